#include "server/mail/SmtpDelivery.h"

#include "server/auth/EmailAddress.h"
#include "server/auth/Tokens.h"
#include "server/mail/MailMessage.h"
#include "server/mail/SmtpConnection.h"

#include <algorithm>
#include <string_view>

namespace clockwell::server {

namespace {

/// Once in the life of the process; threads may come later.
void requireCurl()
{
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK)
        throw std::runtime_error{"The SMTP library cannot be used on this machine."};
}

} // namespace

bool isSmtpUrl(const std::string &url)
{
    std::string_view rest = url;
    if (rest.starts_with("smtp://"))
        rest.remove_prefix(7);
    else if (rest.starts_with("smtps://"))
        rest.remove_prefix(8);
    else
        return false;
    return !rest.empty() && std::ranges::all_of(rest, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
               c == '-' || c == ':' || c == '[' || c == ']';
    });
}

SmtpDelivery::SmtpDelivery(SmtpOptions options, Clock clock)
    : m_options(std::move(options)), m_clock(std::move(clock))
{
    requireCurl();
}

SmtpDelivery::~SmtpDelivery() = default;

void SmtpDelivery::deliver(const Mail &mail, const std::atomic<bool> &giveUp)
{
    if (!isEmailAddress(mail.to)) // it becomes part of a command
        throw DeliveryError{DeliveryError::Kind::Permanent, "the recipient is not an e-mail address"};
    const std::string text = messageText(mail, m_options.from, m_clock(), newId());
    auto connection = takeConnection();
    connection->deliver(mail.to, text, giveUp);
    keep(std::move(connection));
}

void SmtpDelivery::check(const std::atomic<bool> &giveUp)
{
    auto connection = takeConnection();
    connection->check(giveUp);
    keep(std::move(connection));
}

/// The one used last: when there is little to deliver, the others end.
std::unique_ptr<SmtpConnection> SmtpDelivery::takeConnection()
{
    const std::lock_guard lock{m_lock};
    if (m_kept.empty())
        return std::make_unique<SmtpConnection>(m_options);
    auto connection = std::move(m_kept.back());
    m_kept.pop_back();
    return connection;
}

void SmtpDelivery::keep(std::unique_ptr<SmtpConnection> connection)
{
    const std::lock_guard lock{m_lock};
    m_kept.push_back(std::move(connection));
}

} // namespace clockwell::server
