#include "server/auth/CodeMailer.h"

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
    const bool due = m_requests.begin(CodeRequests::Kind::Account, emailKey, remoteAddress);
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
    const bool mailed = m_database.write(
        [&](Connection &connection) { return store(connection, asked, fresh, why, employee); });
    if (mailed)
        m_sendMail(mailFor(*employee, fresh, why));
}

/// Whether an e-mail may go out. If not, the code that is under way has to stay good; without an account one
/// that nobody gets is stored, so that guesses count as they do for every address.
bool CodeMailer::store(Connection &connection, const Codes::Asked &asked, const Codes::Fresh &fresh, Why why,
                       const std::optional<Employee> &employee) const
{
    const bool mailed =
        employee && m_requests.mayMail(connection, asked.emailKey, employee->emailVerified != 0);
    const bool keepOld = employee && !mailed;
    if (why == Why::Again && keepOld && m_codes.touch(connection, asked.emailKey, asked.network))
        return false;
    if (why == Why::Again)
        m_codes.endNewest(connection, asked.emailKey, asked.network);
    m_codes.store(connection, asked, fresh);
    return mailed;
}

} // namespace clockwell::server
