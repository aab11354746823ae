#pragma once

#include <cctype>
#include <cstddef>
#include <string>

namespace clockwell::server::test {

inline bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

/// Whether a code of six digits is in a text. Inside identifiers and hashes, between two of their digits, the
/// same six occur by chance; there they do not count.
inline bool containsCode(const std::string &text, const std::string &code)
{
    const auto isOfAnIdentifier = [&](std::size_t at) {
        return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0;
    };
    for (auto at = text.find(code); at != std::string::npos; at = text.find(code, at + 1))
        if (at == 0 || !isOfAnIdentifier(at - 1) || !isOfAnIdentifier(at + code.size()))
            return true;
    return false;
}

} // namespace clockwell::server::test
