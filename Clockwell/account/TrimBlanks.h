#pragma once

#include <QString>

namespace clockwell {

/// The text without leading and trailing blanks: tabs and Unicode space separators (category Zs). Line breaks
/// are kept.
QString trimBlanks(const QString &text);

} // namespace clockwell
