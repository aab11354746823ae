#include "server/admin/AdminJson.h"

#include <cstdio>

namespace clockwell::server {

Json optionalJson(const std::optional<std::string> &text)
{
    return text ? Json(*text) : Json(nullptr);
}

void printJson(const Json &json)
{
    // A name that is not UTF-8 must not keep the rest from being printed.
    std::printf("%s\n", json.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

} // namespace clockwell::server
