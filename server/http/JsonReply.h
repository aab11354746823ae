#pragma once

#include "server/http/ApiError.h"
#include "server/http/Message.h"

#include <nlohmann/json_fwd.hpp>

namespace clockwell::server {

/// Objects keep the order in which their keys were written.
using Json = nlohmann::ordered_json;

Response jsonReply(const Json &body, int status = 200);

/// {"statusCode", "error", "message"}; `message` is an array of texts when there are several.
Response errorReply(const ApiError &error);

} // namespace clockwell::server
