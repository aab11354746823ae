#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace clockwell::server {

/// What commands print for scripts: the keys stay in the order in which they are set.
using Json = nlohmann::ordered_json;

/// The text, or null.
Json optionalJson(const std::optional<std::string> &text);

/// Indented, with a line end. Bytes that are not UTF-8 come out as U+FFFD.
std::string jsonText(const Json &json);

/// Prints that to standard output.
void printJson(const Json &json);

} // namespace clockwell::server
