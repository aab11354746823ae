#include "Characters.h"

#include <unicode/ubrk.h>

#include <algorithm>

namespace clockwell {

Characters::Characters(QStringView text)
{
    UErrorCode status = U_ZERO_ERROR;
    m_iterator.reset(ubrk_open(UBRK_CHARACTER, "", text.utf16(), static_cast<int32_t>(text.size()), &status));
}

qsizetype Characters::next()
{
    return m_iterator ? ubrk_next(m_iterator.get()) : UBRK_DONE;
}

void Characters::Close::operator()(UBreakIterator *iterator) const
{
    ubrk_close(iterator);
}

QString firstCharacter(QStringView text)
{
    return text.first(std::max<qsizetype>(0, Characters(text).next())).toString();
}

} // namespace clockwell
