#include "server/auth/SignUps.h"

#include "server/attendance/CalendarDay.h"
#include "server/auth/Tokens.h"
#include "server/storage/RowType.h"

namespace clockwell::server {

namespace {

constexpr long long mostRivals = 8;      // beside those whose code is under way
constexpr long long fewLeftAccounts = 5; // more than one sign-up adds

Day utcDayOf(Instant instant)
{
    return Day{std::chrono::floor<std::chrono::days>(instant).time_since_epoch()};
}

/// The first sign-up has its account's identifier.
bool isFirst(const std::string &signUpId, const Employee &employee)
{
    return signUpId == employee.id;
}

bool isContested(Connection &connection, const std::string &employeeId)
{
    return connection.value<long long>("SELECT COUNT(*) FROM sign_ups WHERE employee_id = :employee",
                                       employeeId) > 1;
}

bool saysTheSame(const Employee &employee, const Applicant &applicant)
{
    return employee.fullName == applicant.fullName && employee.email == applicant.email &&
           employee.phone == applicant.phone &&
           (employee.officeId || employee.companyId == applicant.companyId);
}

/// The office, and with it the company, and what was refused stay. An approval was for who stood there.
void replaceDetails(Connection &connection, const Employee &employee, const Applicant &applicant)
{
    if (saysTheSame(employee, applicant))
        return;
    const auto company = employee.officeId ? employee.companyId : applicant.companyId;
    connection.execute("UPDATE employees SET company_id = :company, full_name = :name, email = :email,"
                       " phone = :phone,"
                       " role = CASE status WHEN 'APPROVED' THEN 'EMPLOYEE' ELSE role END,"
                       " status = CASE status WHEN 'APPROVED' THEN 'PENDING' ELSE status END WHERE id = :id",
                       company, applicant.fullName, applicant.email, applicant.phone, employee.id);
}

/// All but the first, the newest, and those whose code may still be entered.
void removeRivals(Connection &connection, const Employee &employee)
{
    connection.execute(
        "DELETE FROM sign_ups WHERE employee_id = :employee AND id <> :first"
        " AND id NOT IN (SELECT id FROM sign_ups WHERE employee_id = :same ORDER BY created_at DESC LIMIT "
        ":most)"
        " AND id NOT IN (SELECT sign_up_id FROM codes WHERE email_key = :key AND sign_up_id IS NOT NULL)",
        employee.id, employee.id, employee.id, mostRivals, emailKey(employee.email));
}

} // namespace

std::optional<SignUp> SignUps::latest(Connection &connection, const std::string &emailKey,
                                      const std::string &network)
{
    const auto employee = findEmployeeByEmail(connection, emailKey);
    if (!employee || employee->emailVerified != 0)
        return {};
    static const std::string sql =
        "SELECT " + columnsOf<SignUp>("s") +
        " FROM sign_ups s WHERE s.employee_id = :employee"
        " ORDER BY CASE s.network WHEN :network THEN 0 ELSE 1 END, s.created_at DESC";
    auto signUp = connection.first<SignUp>(sql, employee->id, network);
    if (signUp)
        return signUp;
    return SignUp{employee->id,
                  {employee->fullName, employee->email, employee->phone, employee->companyId},
                  employee->passwordHash};
}

std::optional<std::string> SignUps::newestFrom(Connection &connection, const std::string &employeeId,
                                               const std::string &network)
{
    const auto id = connection.first<SingleColumn<std::string>>(
        "SELECT id FROM sign_ups WHERE employee_id = :employee AND network = :network"
        " ORDER BY created_at DESC",
        employeeId, network);
    return id ? std::optional{id->value} : std::nullopt;
}

std::optional<SignUps::Recorded> SignUps::record(Connection &connection, const Applicant &applicant,
                                                 const std::string &passwordHash, const std::string &network,
                                                 const std::optional<SignUp> &same) const
{
    removeSome(connection, emailKey(applicant.email));
    const auto known = findEmployeeByEmail(connection, applicant.email);
    if (known && known->emailVerified != 0) {
        // Changes nothing, but takes the time of a change: it must not tell that the address has an account.
        connection.execute("UPDATE employees SET created_at = created_at WHERE id = :id", known->id);
        return {};
    }
    if (!known)
        return Recorded{open(connection, applicant, passwordHash, network), false};
    adopt(connection, *known);
    if (same && connection.execute("UPDATE sign_ups SET full_name = :name, email = :email, phone = :phone,"
                                   " company_id = :company, network = :network WHERE id = :id"
                                   " AND password_hash = :hash",
                                   applicant.fullName, applicant.email, applicant.phone, applicant.companyId,
                                   network, same->id, same->passwordHash) == 1) {
        if (isFirst(same->id, *known))
            replaceDetails(connection, *known, applicant);
        return Recorded{same->id, isContested(connection, known->id)};
    }
    const std::string id = newId();
    add(connection, id, known->id, applicant, passwordHash, network);
    removeRivals(connection, *known);
    return Recorded{id, true};
}

/// Makes the account's own row its first sign-up, if it is from before sign-ups were kept, and starts its
/// life anew: it is not removed while a code for it may be on its way.
void SignUps::adopt(Connection &connection, const Employee &employee) const
{
    connection.execute("INSERT INTO sign_ups (id, employee_id, full_name, email, phone, company_id,"
                       " password_hash, network, created_at) SELECT id, id, full_name, email, phone,"
                       " company_id, password_hash, '', created_at FROM employees e WHERE e.id = :id"
                       " AND NOT EXISTS (SELECT 1 FROM sign_ups s WHERE s.employee_id = e.id)",
                       employee.id);
    connection.execute("UPDATE employees SET created_at = :now WHERE id = :id", toMillis(m_clock()),
                       employee.id);
}

std::string SignUps::open(Connection &connection, const Applicant &applicant, const std::string &passwordHash,
                          const std::string &network) const
{
    const Instant now = m_clock();
    std::string id = newId();
    connection.execute("INSERT INTO employees (id, company_id, full_name, email, email_key, phone,"
                       " password_hash, role, status, email_verified, joined_on, created_at) VALUES"
                       " (:id, :company, :name, :email, :key, :phone, :hash, 'EMPLOYEE', 'PENDING', 0, :day,"
                       " :now)",
                       id, applicant.companyId, applicant.fullName, applicant.email,
                       emailKey(applicant.email), applicant.phone, passwordHash, toText(utcDayOf(now)),
                       toMillis(now));
    add(connection, id, id, applicant, passwordHash, network);
    return id;
}

void SignUps::add(Connection &connection, const std::string &id, const std::string &employeeId,
                  const Applicant &applicant, const std::string &passwordHash,
                  const std::string &network) const
{
    connection.execute("INSERT INTO sign_ups (id, employee_id, full_name, email, phone, company_id,"
                       " password_hash, network, created_at) VALUES (:id, :employee, :name, :email, :phone,"
                       " :company, :hash, :network, :now)",
                       id, employeeId, applicant.fullName, applicant.email, applicant.phone,
                       applicant.companyId, passwordHash, network, toMillis(m_clock()));
}

bool SignUps::settle(Connection &connection, const Employee &employee,
                     const std::optional<std::string> &signUpId, const std::string &nobodysHash)
{
    const bool contested = isContested(connection, employee.id);
    const auto entered =
        connection.first<SignUp>("SELECT id, full_name, email, phone, company_id, password_hash FROM sign_ups"
                                 " WHERE id = :id AND employee_id = :employee",
                                 signUpId.value_or(employee.id), employee.id);
    if (entered && !isFirst(entered->id, employee))
        replaceDetails(connection, employee, entered->applicant);
    if (contested)
        connection.execute("UPDATE employees SET password_hash = :hash WHERE id = :id", nobodysHash,
                           employee.id);
    connection.execute("UPDATE employees SET email_verified = 1 WHERE id = :id", employee.id);
    connection.execute("DELETE FROM sign_ups WHERE employee_id = :employee", employee.id);
    return contested;
}

/// Accounts whose life is over and that no administrator has touched: the one of this address, and a few
/// more.
void SignUps::removeSome(Connection &connection, const std::string &emailKey) const
{
    static const std::string over =
        "SELECT e.id FROM employees e WHERE e.email_verified = 0 AND e.status = 'PENDING'"
        " AND e.office_id IS NULL AND e.created_at <= :end"
        " AND NOT EXISTS (SELECT 1 FROM leaves l WHERE l.employee_id = e.id)"
        " AND NOT EXISTS (SELECT 1 FROM attendance a WHERE a.employee_id = e.id)"
        " AND NOT EXISTS (SELECT 1 FROM token_families f WHERE f.employee_id = e.id)";
    const long long end = toMillis(m_clock() - m_life);
    using Id = SingleColumn<std::string>;
    auto gone = connection.all<Id>(over + " AND e.email_key = :key", end, emailKey);
    for (Id &id : connection.all<Id>(over + " ORDER BY e.created_at LIMIT :few", end, fewLeftAccounts))
        gone.push_back(std::move(id));
    for (const Id &id : gone) {
        connection.execute("DELETE FROM sign_ups WHERE employee_id = :id", id.value);
        connection.execute("DELETE FROM employees WHERE id = :id", id.value);
    }
}

} // namespace clockwell::server
