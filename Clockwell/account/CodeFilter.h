#pragma once

#include <QString>

namespace clockwell {

/// How many characters a code has. A character here is what a person sees as one: a digit together with its
/// combining marks, and also one that takes two UTF-16 units.
constexpr int codeLength = 6;

struct FilteredCode
{
    QString code;
    qsizetype cursor = 0; ///< in UTF-16 units, where the cursor was with regard to what is left
};

/// What of a text may stand in a code field: of its first six characters those that are numeric (of any
/// Numeric_Type of Unicode). The cut comes first: "12a3456" gives "12345". `cursor` is a position in `text`.
FilteredCode filterCode(const QString &text, qsizetype cursor);

/// The number of characters in the same sense.
int characterCount(const QString &text);

} // namespace clockwell
