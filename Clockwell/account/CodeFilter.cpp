#include "CodeFilter.h"

#include <unicode/ubrk.h>

#include <memory>

namespace clockwell {

namespace {

/// Steps from character to character (extended grapheme clusters, Unicode Standard Annex 29). ICU's, because
/// Qt 6.4's finder splits surrogate pairs where a digit of an Indic script follows.
class Characters
{
public:
    explicit Characters(QStringView text)
    {
        UErrorCode status = U_ZERO_ERROR;
        m_iterator.reset(
            ubrk_open(UBRK_CHARACTER, "", text.utf16(), static_cast<int32_t>(text.size()), &status));
    }

    /// Where the next character ends, in UTF-16 units; negative behind the last.
    qsizetype next() { return m_iterator ? ubrk_next(m_iterator.get()) : UBRK_DONE; }

private:
    struct Close
    {
        void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
    };
    std::unique_ptr<UBreakIterator, Close> m_iterator;
};

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
