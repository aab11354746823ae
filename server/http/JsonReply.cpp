#include "server/http/JsonReply.h"

#include <nlohmann/json.hpp>

namespace clockwell::server {

Response jsonReply(const Json &body, int status)
{
    Response response;
    response.status = status;
    response.body = body.dump(-1, ' ', false, Json::error_handler_t::replace);
    return response;
}

Response errorReply(const ApiError &error)
{
    Json body{{"statusCode", error.status()}, {"error", error.error()}};
    if (error.messages().size() == 1 && error.error() != "VALIDATION_FAILED")
        body["message"] = error.messages().front();
    else
        body["message"] = error.messages();
    Response response = jsonReply(body, error.status());
    response.headers = error.headers();
    if (error.status() == 401)
        response.headers.emplace_back("WWW-Authenticate", "Bearer"); // RFC 9110, section 15.5.2
    return response;
}

} // namespace clockwell::server
