#pragma once

#include "server/http/Message.h"

#include <string>

namespace clockwell::server {

/// The account that a request about a password or a code is for: the key of the e-mail address in its body,
/// or, when there is none, what it says to be signed in with. Empty when it says neither. For sharing out
/// places in a queue before anything is checked: reads the body once from front to end, gives up at the first
/// value within a value, and throws nothing. Any thread.
std::string accountOf(const Request &request);

} // namespace clockwell::server
