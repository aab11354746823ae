#include "server/auth/CodeMailer.h"

#include "server/auth/Accounts.h"
#include "server/auth/SignUps.h"
#include "server/http/PeerAddress.h"
#include "server/mail/MailTexts.h"

#include <utility>

namespace clockwell::server {

namespace {

Mail mailFor(const Employee &employee, const Codes::Fresh &fresh, CodeMailer::Why why)
{
    const MailedCode code{fresh.first, fresh.second};
    const bool either = employee.emailVerified == 0 && why == CodeMailer::Why::Again;
    return either ? codeMail(employee.email, code) : resetMail(employee.email, code, precedenceOf(employee));
}

} // namespace

void CodeMailer::send(const std::string &emailKey, const std::string &remoteAddress, Why why)
{
    // Whoever asks: the answer must not depend on the account.
    m_sendMail.requireRoom(why == Why::Forgot ? Precedence::Own : Precedence::Stranger);
    m_requests.count(remoteAddress);
    const bool due = m_requests.mayMake(CodeRequests::Kind::Account, emailKey);
    const Codes::Fresh fresh = m_codes.make(emailKey);
    Codes::Asked asked{emailKey, networkOf(remoteAddress), CodePurpose::Reset, {}};
    const auto employee = m_database.read([&](Connection &connection) {
        auto found = findEmployeeByEmail(connection, emailKey);
        if (found)
            asked.signUpId = SignUps::newestFrom(connection, found->id, asked.network);
        return found;
    });
    if (!due)
        return; // the code that is under way stays good
    const bool mailed = employee && m_requests.mayMail(emailKey, employee->emailVerified != 0);
    m_database.write(
        [&](Connection &connection) { store(connection, asked, fresh, why, employee && !mailed); });
    if (mailed)
        m_sendMail(mailFor(*employee, fresh, why));
}

/// `keepOld`: no e-mail goes out, so the code that is under way has to stay good. Otherwise one that nobody
/// gets is stored, so that guesses count as they do for every address.
void CodeMailer::store(Connection &connection, const Codes::Asked &asked, const Codes::Fresh &fresh, Why why,
                       bool keepOld) const
{
    if (why == Why::Again && keepOld && m_codes.touch(connection, asked.emailKey, asked.network))
        return;
    if (why == Why::Again)
        m_codes.endNewest(connection, asked.emailKey, asked.network);
    m_codes.store(connection, asked, fresh);
}

} // namespace clockwell::server
