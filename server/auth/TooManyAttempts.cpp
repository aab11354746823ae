#include "server/auth/TooManyAttempts.h"

namespace clockwell::server {

std::string waitText(std::chrono::seconds wait)
{
    if (wait <= std::chrono::seconds{90})
        return std::to_string(wait.count()) + (wait.count() == 1 ? " second" : " seconds");
    if (wait <= std::chrono::minutes{90})
        return std::to_string(std::chrono::ceil<std::chrono::minutes>(wait).count()) + " minutes";
    return std::to_string(std::chrono::ceil<std::chrono::hours>(wait).count()) + " hours";
}

ApiError tooMany(std::string error, std::string_view complaint, std::chrono::seconds wait)
{
    return ApiError{429, std::move(error),
                    std::string{complaint} + " Please try again in " + waitText(wait) + "."}
        .retryAfter(wait);
}

ApiError tooManyAttempts(std::string_view complaint, std::chrono::seconds wait)
{
    return tooMany("TOO_MANY_ATTEMPTS", complaint, wait);
}

} // namespace clockwell::server
