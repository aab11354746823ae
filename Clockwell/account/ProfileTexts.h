#pragma once

#include <QString>

namespace clockwell {

/// The initials shown in place of a picture: the first character of the name's first word and, if there is
/// more than one word, of its last, in upper case; "?" for a name without words. Only spaces separate words,
/// no other blanks. The conversion to upper case follows Unicode and does not depend on the locale.
QString initialsOf(const QString &fullName);

/// A role as displayed: "HR_MANAGER" becomes "HR MANAGER".
QString roleText(const QString &role);

/// A status with the first letter of each word in upper case and the rest in lower case. A word is an
/// uninterrupted run of letters, digits, marks and apostrophes.
QString statusText(const QString &status);

/// A labelled value as it is read out: "Role, Employee".
QString spokenRow(const QString &label, const QString &value);

} // namespace clockwell
