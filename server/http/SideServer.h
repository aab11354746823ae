#pragma once

#include "server/http/HttpOptions.h"
#include "server/http/ListenAddress.h"
#include "server/http/Message.h"

#include <functional>
#include <string>

namespace clockwell::server {

/// Options of a small server beside the main one, which answers one path to the few who run the service. It
/// has connections and threads of its own, so that it answers when the main one is full.
HttpOptions sideServerOptions(const ListenAddress &listen, const std::string &path);

/// What `answer` returns for a GET of `path`, and 404 or 405 for any other request but "/health".
Response answerOnly(const std::string &path, const Request &request, const std::function<Response()> &answer);

} // namespace clockwell::server
