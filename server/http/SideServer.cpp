#include "server/http/SideServer.h"

#include "server/http/JsonReply.h"

namespace clockwell::server {

HttpOptions sideServerOptions(const ListenAddress &listen, const std::string &path)
{
    HttpOptions options;
    options.address = listen.address;
    options.port = listen.port;
    options.renewalThreads = options.signedInThreads = options.passwordThreads = 1;
    options.maxConnections = options.connectionsPerNetwork = 32;
    options.guestConnections = 1;
    options.failuresPerMinute = 0;
    options.isOwnPath = [path](const std::string &asked) { return asked == path; };
    return options;
}

Response answerOnly(const std::string &path, const Request &request, const std::function<Response()> &answer)
{
    if (request.path != path)
        return errorReply({404, "NOT_FOUND", "There is /health and " + path + "."});
    if (request.method != "GET")
        return errorReply(
            ApiError{405, "METHOD_NOT_ALLOWED", "This address only answers GET."}.with("Allow", "GET"));
    return answer();
}

} // namespace clockwell::server
