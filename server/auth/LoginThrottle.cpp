#include "server/auth/LoginThrottle.h"

#include "server/http/PeerAddress.h"

namespace clockwell::server {

namespace {

/// The network comes first, because it has no blank: so no account can pass for another pair.
std::string failureKey(const std::string &account, const std::string &address)
{
    return networkOf(address) + ' ' + account;
}

} // namespace

LoginThrottle::Attempt::Attempt(RateLimit &failures, std::string key, const char *complaint)
    : m_failures(failures), m_key(std::move(key)), m_event(failures.take(m_key, complaint))
{}

LoginThrottle::Attempt::~Attempt()
{
    if (!m_judged)
        m_failures.giveBack(m_key, m_event);
}

void LoginThrottle::Attempt::wasRight()
{
    m_judged = true;
    m_failures.forget(m_key);
}

LoginThrottle::Attempt LoginThrottle::begin(const std::string &account, const std::string &address,
                                            const char *complaint)
{
    return {m_failures, failureKey(account, address), complaint};
}

void LoginThrottle::forgetAccount(const std::string &account)
{
    m_failures.forgetIf([&](std::string_view key) { return key.substr(key.find(' ') + 1) == account; });
}

} // namespace clockwell::server
