#include "server/JsonReply.h"

#include <nlohmann/json.hpp>

namespace clockwell::server {

namespace {

constexpr std::chrono::seconds retryBusy{2};
constexpr std::chrono::seconds retryStorage{60};

} // namespace

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

ApiError toApiError(const DatabaseError &error)
{
    using Kind = DatabaseError::Kind;
    switch (error.kind()) {
    case Kind::Busy:
        return ApiError{503, "BUSY",
                        "The server is busy. Nothing was recorded; please try again in a moment."}
            .retryAfter(retryBusy);
    case Kind::Full:
        return ApiError{503, "STORAGE_FULL",
                        "The server's storage is full. Nothing was recorded; please tell your administrator."}
            .retryAfter(retryStorage);
    case Kind::ReadOnly:
        return ApiError{503, "STORAGE_READ_ONLY",
                        "The server cannot write to its storage. Nothing was recorded; please tell your"
                        " administrator."}
            .retryAfter(retryStorage);
    case Kind::Damaged:
        return ApiError{
            500, "STORAGE_DAMAGED",
            "The server's storage is damaged. Nothing was recorded; please tell your administrator."};
    default:
        return ApiError{500, "STORAGE_ERROR",
                        "The server's storage failed. Nothing was recorded; please tell your administrator."};
    }
}

} // namespace clockwell::server
