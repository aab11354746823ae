#pragma once

#include <QString>

namespace clockwell {

/// The length of a code in user-perceived characters: a digit counts as one together with its combining
/// marks, and also if it takes two UTF-16 units.
constexpr int codeLength = 6;

struct FilteredCode
{
    QString code;
    qsizetype cursor = 0; ///< in UTF-16 units, after the kept characters that preceded it
};

/// Truncates a text to six characters and then keeps the numeric ones (of any Numeric_Type of Unicode):
/// "12a3456" gives "12345". `cursor` is a position in `text`, in UTF-16 units.
FilteredCode filterCode(const QString &text, qsizetype cursor);

/// The number of user-perceived characters.
int characterCount(const QString &text);

} // namespace clockwell
