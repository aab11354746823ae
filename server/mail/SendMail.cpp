#include "server/mail/SendMail.h"

#include "server/http/ApiError.h"

#include <algorithm>

namespace clockwell::server {

namespace {
// Later it may look quite different.
constexpr std::chrono::seconds shortestRetry{5};
constexpr std::chrono::seconds longestRetry{60};
} // namespace

void SendMail::requireRoom(Precedence precedence) const
{
    const auto excess = m_excess ? m_excess(precedence) : std::chrono::seconds{0};
    if (excess > std::chrono::seconds{0})
        throw ApiError{503, "MAIL_BUSY",
                       "E-mails cannot be delivered in time at the moment. Please try again in a minute."}
            .retryAfter(std::clamp(excess, shortestRetry, longestRetry));
}

} // namespace clockwell::server
