#pragma once

#include <cstddef>
#include <string_view>

namespace clockwell::server {

/// Well-formed UTF-8 as RFC 3629 has it: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

/// A control character of ASCII; no byte of a longer character is one.
inline bool isControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

/// The characters (code points) of well-formed UTF-8.
std::size_t characterCount(std::string_view utf8);

} // namespace clockwell::server
