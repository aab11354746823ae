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

void LoginThrottle::begin(const std::string &account, const std::string &address, const char *complaint)
{
    m_failures.take(failureKey(account, address), complaint);
}

void LoginThrottle::succeed(const std::string &account, const std::string &address)
{
    m_failures.forget(failureKey(account, address));
}

void LoginThrottle::forgetAccount(const std::string &account)
{
    m_failures.forgetIf([&](std::string_view key) { return key.substr(key.find(' ') + 1) == account; });
}

} // namespace clockwell::server
