#include "server/admin/Printable.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <cstdint>

namespace clockwell::server {

namespace {

/// Calls `visit` with each code point; bytes that are not UTF-8 come as U+FFFD.
template <class Visit>
void eachCharacter(std::string_view text, Visit visit)
{
    const auto characters = icu::UnicodeString::fromUTF8(text);
    for (std::int32_t at = 0; at < characters.length(); at = characters.moveIndex32(at, 1))
        visit(characters.char32At(at));
}

std::size_t widthOf(UChar32 character)
{
    const auto type = u_charType(character);
    if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_FORMAT_CHAR)
        return 0;
    const auto width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

/// Control characters, the line and paragraph separators, the marks that turn the direction of a line, and
/// whatever else is not seen and would let two names look the same. Only the joiners are spelling.
bool steersTerminal(UChar32 character)
{
    return u_iscntrl(character) != 0 && !u_hasBinaryProperty(character, UCHAR_JOIN_CONTROL);
}

} // namespace

std::size_t terminalWidth(std::string_view text)
{
    std::size_t width = 0;
    eachCharacter(text, [&](UChar32 character) { width += widthOf(character); });
    return width;
}

std::string printable(std::string_view text)
{
    std::string result;
    eachCharacter(text, [&](UChar32 character) {
        if (steersTerminal(character))
            result += '?';
        else
            icu::UnicodeString{character}.toUTF8String(result);
    });
    return result;
}

} // namespace clockwell::server
