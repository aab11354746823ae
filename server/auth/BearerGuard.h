#pragma once

#include "server/auth/Sessions.h"
#include "server/http/Message.h"

namespace clockwell::server {

/// The employee who sends a request, told by its bearer token (RFC 6750, section 2.1).
/// Throws ApiError 401 when there is no valid one, and 429 when the account sends too many requests.
Employee requireCaller(Sessions &sessions, const Request &request);
SignedIn requireSignedIn(Sessions &sessions, const Request &request); ///< likewise, with the session

/// Likewise, before everybody else who waits for the database, and however many requests there were.
Employee requireCallerFirst(Sessions &sessions, const Request &request);

} // namespace clockwell::server
