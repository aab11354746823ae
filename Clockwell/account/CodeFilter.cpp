#include "CodeFilter.h"

#include "Characters.h"

namespace clockwell {

namespace {

/// A character is what its first code point is; combining marks do not change that.
bool isNumeric(QStringView character)
{
    const QChar first = character.front();
    if (first.isHighSurrogate() && character.size() > 1 && character[1].isLowSurrogate())
        return QChar::isNumber(QChar::surrogateToUcs4(first, character[1]));
    return first.isNumber();
}

} // namespace

FilteredCode filterCode(const QString &text, qsizetype cursor)
{
    FilteredCode result;
    Characters characters(text);
    qsizetype start = 0;
    for (int taken = 0; taken < codeLength; ++taken) {
        const qsizetype end = characters.next();
        if (end < 0)
            break;
        const QStringView character = QStringView(text).sliced(start, end - start);
        if (isNumeric(character))
            result.code += character;
        if (end <= cursor)
            result.cursor = result.code.size();
        start = end;
    }
    return result;
}

int characterCount(const QString &text)
{
    Characters characters(text);
    int count = 0;
    while (characters.next() >= 0)
        ++count;
    return count;
}

} // namespace clockwell
