#pragma once

#include <QString>

namespace clockwell {

/// What stands for a person without a picture: the first character of the name's first word and, with more
/// than one word, of its last, in upper case; "?" for a name without words. Words are parted by spaces, no
/// other blanks. Upper case is Unicode's own, the same in every locale.
QString initialsOf(const QString &fullName);

/// A server's role in words: "HR_MANAGER" reads "HR MANAGER".
QString roleText(const QString &role);

/// A status with the first letter of each word in upper case and the rest in lower case. A word is an
/// uninterrupted run of letters, digits, marks and apostrophes.
QString statusText(const QString &status);

} // namespace clockwell
