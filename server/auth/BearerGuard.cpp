#include "server/auth/BearerGuard.h"

#include "server/http/ApiError.h"

#include <string_view>

namespace clockwell::server {

namespace {

/// The token, or nothing when the header has another scheme; schemes are compared without regard to case.
std::string_view bearerToken(std::string_view authorization)
{
    constexpr std::string_view bearerScheme = "bearer ";
    if (authorization.size() <= bearerScheme.size())
        return {};
    for (std::size_t i = 0; i < bearerScheme.size(); ++i) {
        const char c = authorization[i];
        if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != bearerScheme[i])
            return {};
    }
    authorization.remove_prefix(bearerScheme.size());
    const auto first = authorization.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view{} : authorization.substr(first);
}

std::string requireBearerToken(const Request &request)
{
    const auto token = bearerToken(request.authorization);
    if (token.empty())
        throw ApiError{401, "UNAUTHORIZED", "Please sign in."};
    return std::string{token};
}

} // namespace

Employee requireCaller(Sessions &sessions, const Request &request)
{
    return requireSignedIn(sessions, request).employee;
}

SignedIn requireSignedIn(Sessions &sessions, const Request &request)
{
    return sessions.signedIn(requireBearerToken(request));
}

Employee requireCallerFirst(Sessions &sessions, const Request &request)
{
    return sessions.signedInFirst(requireBearerToken(request)).employee;
}

} // namespace clockwell::server
