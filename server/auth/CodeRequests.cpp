#include "server/auth/CodeRequests.h"

#include "server/auth/EmailAddress.h"
#include "server/http/PeerAddress.h"

namespace clockwell::server {

CodeRequests::CodeRequests(const CodeRequestLimits &limits, const Clock &clock)
    : m_perNetwork(limits.perNetwork, clock),
      m_perAddress(limits.perAddress, clock),
      m_perMailbox(limits.perAddress, clock),
      m_notices(limits.notices, clock)
{}

void CodeRequests::count(const std::string &remoteAddress)
{
    m_perNetwork.take(networkOf(remoteAddress), "Too many codes were asked for from this network.");
}

void CodeRequests::forget(const std::string &remoteAddress)
{
    m_perNetwork.giveBack(networkOf(remoteAddress));
}

bool CodeRequests::mayMake(Kind kind, const std::string &emailKey)
{
    return m_perAddress.tryTake((kind == Kind::SignUp ? "signup " : "account ") + emailKey);
}

bool CodeRequests::mayMail(const std::string &emailKey, bool verified)
{
    const std::string mailbox = mailboxOf(emailKey);
    return verified || mailbox == emailKey || m_perMailbox.tryTake(mailbox);
}

bool CodeRequests::mayNotify(const std::string &emailKey)
{
    return m_notices.tryTake(mailboxOf(emailKey));
}

} // namespace clockwell::server
