#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace clockwell::server {

/// One complete, validated request. Path and query are percent-decoded, valid UTF-8 and free of control
/// characters.
struct Request
{
    std::string method; ///< as sent ("GET", "POST"), but a HEAD arrives as "GET"
    std::string path;   ///< without query, e.g. "/api/attendance/today"
    std::multimap<std::string, std::string>
        query;                 ///< '+' stands for itself, a key without '=' has an empty value
    std::string authorization; ///< value of the Authorization header, or empty
    std::string contentType;   ///< value of the Content-Type header, or empty
    std::string body;          ///< raw bytes, transfer coding removed
    std::string remoteAddress; ///< the client's IP address as text: the peer's, or whom a trusted proxy names
    std::string requestId;     ///< names this request in the log
};

/// Whose work a request is. Each lane has threads of its own, so that none waits for another.
enum class Lane {
    Renewal,  ///< keeps a session alive: never refused for want of room, for the app would sign its user out
    SignedIn, ///< needs a valid access token
    Password, ///< computes or compares hashes of passwords or codes
};

struct Response
{
    int status = 200;
    std::string body; ///< JSON text; empty for 204
    std::string contentType = "application/json";
    std::vector<std::pair<std::string, std::string>> headers; ///< further ones, e.g. Retry-After
    bool unanswered = false; ///< the connection is closed without a byte, and all of the above is ignored
};

/// Called on a worker thread, several at once; may block. What it throws becomes a 500 that does not show the
/// text.
using Handler = std::function<Response(const Request &)>;

/// What a server has to know of a request before it is worked on. Called on the I/O thread: both are quick,
/// whatever the request holds, and throw nothing.
struct Triage
{
    std::function<Lane(const Request &)> laneOf; ///< of a request still without body; none: SignedIn for all
    /// Whom a complete request of the password lane is about; empty when that cannot be told.
    std::function<std::string(const Request &)> accountOf;
};

} // namespace clockwell::server
