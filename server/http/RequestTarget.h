#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace clockwell::server {

/// The two parts of a request target in origin form, percent-decoded (RFC 3986, section 2.1).
struct RequestTarget
{
    std::string path;
    std::multimap<std::string, std::string> query;
};

/// Empty for everything but a clean origin-form target: an absolute form, a fragment, characters that have to
/// be escaped and are not, a broken percent escape, and escapes that make a control character, a slash within
/// a path segment (two different paths would look like one) or invalid UTF-8. A '+' in the query stands for
/// itself, as in coordinates.
std::optional<RequestTarget> parseTarget(std::string_view target);

} // namespace clockwell::server
