#pragma once

#include "server/http/ApiError.h"

#include <chrono>
#include <string>
#include <string_view>

namespace clockwell::server {

/// "45 seconds", "7 minutes" or "22 hours": a wait as people say it, never shorter than it is.
std::string waitText(std::chrono::seconds wait);

/// 429: the complaint, a sentence, and when to try again; the wait stands in "Retry-After", too.
ApiError tooMany(std::string error, std::string_view complaint, std::chrono::seconds wait);

/// The same as TOO_MANY_ATTEMPTS.
ApiError tooManyAttempts(std::string_view complaint, std::chrono::seconds wait);

} // namespace clockwell::server
