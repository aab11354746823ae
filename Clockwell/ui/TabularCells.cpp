#include "TabularCells.h"

#include <algorithm>

namespace clockwell {

namespace {

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool isLatin(QChar character)
{
    return character.script() == QChar::Script_Common || character.script() == QChar::Script_Latin;
}

} // namespace

QStringList tabularCells(const QString &text)
{
    if (!std::all_of(text.cbegin(), text.cend(), isLatin))
        return {text};
    QStringList cells;
    bool afterDigit = true;
    for (const QChar character : text) {
        if (isDigit(character) || afterDigit)
            cells.append(character);
        else
            cells.last().append(character);
        afterDigit = isDigit(character);
    }
    return cells;
}

bool isDigitCell(const QString &cell)
{
    return cell.size() == 1 && isDigit(cell.front());
}

} // namespace clockwell
