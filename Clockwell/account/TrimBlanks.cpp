#include "TrimBlanks.h"

#include <algorithm>

namespace clockwell {

namespace {

bool isBlank(QChar character)
{
    return character == QLatin1Char('\t') || character.category() == QChar::Separator_Space;
}

} // namespace

QString trimBlanks(const QString &text)
{
    const auto first = std::find_if_not(text.cbegin(), text.cend(), isBlank);
    const auto last = std::find_if_not(text.crbegin(), std::make_reverse_iterator(first), isBlank).base();
    return QString(first, last - first);
}

} // namespace clockwell
