#include "Utf8.h"

#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>

namespace clockwell::server {

bool isUtf8(std::string_view text)
{
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(nullptr, 0, nullptr, text.data(), static_cast<std::int32_t>(text.size()), &error);
    return U_SUCCESS(error) || error == U_BUFFER_OVERFLOW_ERROR; // there is no buffer to write to
}

std::size_t characterCount(std::string_view utf8)
{
    return static_cast<std::size_t>(std::ranges::count_if(
        utf8, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

} // namespace clockwell::server
