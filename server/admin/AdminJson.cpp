#include "server/admin/AdminJson.h"

#include <cstdio>

namespace clockwell::server {

Json optionalJson(const std::optional<std::string> &text)
{
    return text ? Json(*text) : Json(nullptr);
}

std::string jsonText(const Json &json)
{
    // A name that is not UTF-8 must not keep the rest from being printed.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void printJson(const Json &json)
{
    std::fputs(jsonText(json).c_str(), stdout);
}

} // namespace clockwell::server
