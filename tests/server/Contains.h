#pragma once

#include <string>

namespace clockwell::server::test {

inline bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

} // namespace clockwell::server::test
