#include "RequestTarget.h"

#include "Utf8.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>

namespace clockwell::server {

namespace urls = boost::urls;

namespace {

std::optional<std::string> decoded(const urls::pct_string_view &part)
{
    std::string text = part.decode();
    if (std::ranges::any_of(text, isControl) || !isUtf8(text))
        return std::nullopt;
    return text;
}

bool escapesSlash(std::string_view path)
{
    return path.find("%2F") != path.npos || path.find("%2f") != path.npos;
}

} // namespace

std::optional<RequestTarget> parseTarget(std::string_view target)
{
    const auto parsed = urls::parse_origin_form({target.data(), target.size()});
    if (!parsed || escapesSlash(parsed->encoded_path()))
        return std::nullopt;
    auto path = decoded(parsed->encoded_path());
    if (!path)
        return std::nullopt;
    RequestTarget result{std::move(*path), {}};
    for (const auto &pair : parsed->encoded_params()) {
        if (pair.key.empty() && !pair.has_value)
            continue;
        auto key = decoded(pair.key);
        auto value = decoded(pair.value);
        if (!key || !value)
            return std::nullopt;
        result.query.emplace(std::move(*key), std::move(*value));
    }
    return result;
}

} // namespace clockwell::server
