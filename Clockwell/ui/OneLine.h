#pragma once

#include <QString>

namespace clockwell {

/// A text on one line: what is copied from elsewhere often ends in a line break, which a field would hold and
/// send without showing it.
struct OneLine
{
    QString text;
    int cursor = 0;

    static bool isBroken(const QString &text);
    /// Line breaks within the text become spaces, those at its ends go. `cursor` is a position in the text.
    static OneLine join(const QString &text, int cursor);
};

} // namespace clockwell
