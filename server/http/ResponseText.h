#pragma once

#include "Message.h"

#include <ctime>
#include <string>

namespace clockwell::server {

/// How a response leaves on the wire.
struct ResponseFraming
{
    bool keepAlive = false;   ///< what the Connection header says
    bool http10 = false;      ///< the peer speaks HTTP/1.0: keep-alive must be said
    bool withoutBody = false; ///< answer to HEAD: Content-Length as if, but no body
};

/// The bytes of a response (RFC 9112), with the headers that every one of this server carries. Throws
/// std::invalid_argument when the response cannot be sent as it is: a status outside 200..599, or a header
/// that would break the message's framing.
std::string responseText(const Response &response, const ResponseFraming &framing, std::time_t now);

/// A Date header's value (RFC 9110, section 5.6.7), independent of the process's locale.
std::string httpDate(std::time_t time);

} // namespace clockwell::server
