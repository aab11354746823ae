#pragma once

#include <string_view>
#include <variant>
#include <vector>

namespace clockwell::server {

/// Bytes that are no text.
struct StoredBytes
{
    std::string_view bytes;
};

/// A value as a database keeps it; the monostate is NULL.
using StoredValue = std::variant<std::monostate, long long, double, std::string_view, StoredBytes>;

/// The values of one row. What its texts point to is gone when the next row is read.
using StoredRow = std::vector<StoredValue>;

} // namespace clockwell::server
