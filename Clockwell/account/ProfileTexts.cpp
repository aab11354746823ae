#include "ProfileTexts.h"

#include "Characters.h"

#include <QStringList>

namespace clockwell {

QString initialsOf(const QString &fullName)
{
    const QStringList words = fullName.split(u' ', Qt::SkipEmptyParts);
    if (words.isEmpty())
        return QStringLiteral("?");
    const QString last = words.size() > 1 ? firstCharacter(words.last()) : QString();
    return (firstCharacter(words.first()) + last).toUpper();
}

QString roleText(const QString &role)
{
    return QString(role).replace(u'_', u' ');
}

QString statusText(const QString &status)
{
    QString text;
    bool inside = false;
    for (const char32_t point : status.toUcs4()) {
        const QString letter = QString::fromUcs4(&point, 1);
        text += inside ? letter.toLower() : letter.toUpper();
        const bool apostrophe = point == U'\'' || point == U'\u2019';
        inside = QChar::isLetterOrNumber(point) || QChar::isMark(point) || (inside && apostrophe);
    }
    return text;
}

QString spokenRow(const QString &label, const QString &value)
{
    return label + QStringLiteral(", ") + value;
}

} // namespace clockwell
