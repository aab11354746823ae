#pragma once

#include <string>
#include <vector>

namespace clockwell::server {

/// Rows under a header, the columns aligned and two blanks apart, no line ending in blanks.
std::string tableText(const std::vector<std::string> &header,
                      const std::vector<std::vector<std::string>> &rows);

} // namespace clockwell::server
