#include "CodeFilter.h"

#include "Characters.h"

#include <unicode/uchar.h>

namespace clockwell {

namespace {

/// Decided by the first code point; combining marks are ignored. Any code point with a Numeric_Type (Unicode,
/// section 4.6) is numeric: digits of any script, and also fractions and ideographs for numbers.
bool isNumeric(QStringView character)
{
    char32_t first = character.front().unicode();
    if (QChar::isHighSurrogate(first) && character.size() > 1 && character[1].isLowSurrogate())
        first = QChar::surrogateToUcs4(character.front(), character[1]);
    return u_getIntPropertyValue(static_cast<UChar32>(first), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
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
