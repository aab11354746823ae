#include "server/admin/Employees.h"

#include "server/admin/AdminError.h"
#include "server/admin/Offices.h"
#include "server/admin/Printable.h"
#include "server/storage/RowType.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace clockwell::server {

namespace {

constexpr std::size_t mostSuggestions = 3;

std::string employeeSql(const std::string &rest)
{
    return "SELECT " + columnsOf<Employee>("e") + ", " + columnsOf<Company>("c") + ", " +
           columnsOf<Office>("o") +
           " FROM employees e LEFT JOIN companies c ON c.id = e.company_id"
           " LEFT JOIN offices o ON o.id = e.office_id " +
           rest;
}

/// How many bytes have to be put in, left out or exchanged to make one text of the other (Levenshtein).
std::size_t editDistance(const std::string &left, const std::string &right)
{
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t exchanged = diagonal + (left[i - 1] == right[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, exchanged});
        }
    }
    return row.back();
}

std::string suggestion(Connection &connection, const std::string &key)
{
    const std::size_t farthest = std::max<std::size_t>(2, key.size() / 5);
    std::vector<std::pair<std::size_t, std::string>> close;
    for (const auto &[employee, company, office] : listEmployees(connection)) {
        const std::string known = emailKey(employee.email);
        const bool begun = !key.empty() && known.starts_with(key); // only the part before the @, for instance
        const std::size_t distance = begun ? 0 : editDistance(known, key);
        if (distance <= farthest)
            close.emplace_back(distance, printable(employee.email));
    }
    std::sort(close.begin(), close.end());
    close.resize(std::min(close.size(), mostSuggestions));
    std::string text;
    for (const auto &candidate : close)
        text += (text.empty() ? " Did you mean " : " or ") + candidate.second;
    return text.empty() ? text : text + "?";
}

bool neverApproved(const Employee &employee)
{
    return employee.status == "PENDING" || employee.status == "REJECTED";
}

/// The office that an employee without one gets when none is named.
Office onlyPossibleOffice(Connection &connection, const PlacedEmployee &person)
{
    auto offices = listOffices(connection);
    std::erase_if(offices, [&](const CompanyOffice &one) {
        return person.employee.companyId && one.company.id != *person.employee.companyId;
    });
    if (offices.size() == 1)
        return offices.front().office;
    const std::string who = personText(person.employee) + " has no office";
    if (offices.empty())
        throw refused(who + ", and there is none" +
                      (person.employee.companyId ? " in the company " + printable(person.company.name) : "") +
                      " to assign.");
    throw refused(who + ". Pass --office with one of: " + officeNames(offices) + ".");
}

Office officeToBe(Connection &connection, const PlacedEmployee &person,
                  const std::optional<std::string> &named)
{
    if (!named && !person.employee.officeId)
        return onlyPossibleOffice(connection, person);
    const auto [office, company] = requireOfficeNamed(connection, named ? *named : *person.employee.officeId);
    if (person.employee.companyId && company.id != *person.employee.companyId)
        throw refused("The office " + printable(office.name) + " belongs to the company " +
                      printable(company.name) + ", but " + personText(person.employee) + " to " +
                      printable(person.company.name) + ".");
    return office;
}

std::string todayIn(const Office &office, Instant now)
{
    const auto zone = TimeZone::named(office.timeZoneName);
    if (!zone)
        throw refused("The time zone " + printable(office.timeZoneName) + " of the office " +
                      printable(office.name) + " is not known here.");
    return toText(zone->dayOf(now));
}

ChangedEmployee unchanged(const PlacedEmployee &person, const std::string &text)
{
    return {{false, text + "; nothing was changed."}, person, person};
}

} // namespace

std::string personText(const Employee &employee)
{
    return printable(employee.email) + " (" + printable(employee.fullName) + ")";
}

std::vector<PlacedEmployee> listEmployees(Connection &connection)
{
    static const std::string sql = employeeSql("ORDER BY e.full_name, e.email_key");
    return connection.all<PlacedEmployee>(sql);
}

PlacedEmployee requireEmployee(Connection &connection, const std::string &email)
{
    static const std::string sql = employeeSql("WHERE e.email_key = :key");
    const std::string key = emailKey(email);
    auto person = connection.first<PlacedEmployee>(sql, key);
    if (!person)
        throw notFound("There is no employee with the e-mail address " + printable(email) + "." +
                       suggestion(connection, key));
    return std::move(*person);
}

ChangedEmployee EmployeeDecisions::approve(const Approval &approval)
{
    const PlacedEmployee before = requireEmployee(m_connection, approval.email);
    const Employee &employee = before.employee;
    const bool approved = employee.status == "APPROVED";
    if (!approved && employee.emailVerified == 0 && !approval.evenUnverified)
        throw refused(personText(employee) +
                      " has not verified the e-mail address yet. Wait for that, or pass --even-unverified;"
                      " signing in stays impossible until it is verified.");
    const Office office = officeToBe(m_connection, before, approval.office);
    const std::string role = approval.role.value_or(employee.role);
    if (approved && employee.officeId == office.id && employee.companyId && employee.role == role)
        return unchanged(before, personText(employee) + " is approved already");
    const bool first = neverApproved(employee); // also when an earlier approval was withdrawn
    const std::string joinedOn = first ? todayIn(office, m_now) : employee.joinedOn;
    const auto lastDay = first ? std::nullopt : employee.lastDay;
    place(employee, office.id);
    m_connection.execute("UPDATE employees SET status = 'APPROVED', role = :role, joined_on = :joined,"
                         " last_day = :last WHERE id = :id",
                         role, joinedOn, lastDay, employee.id);
    const std::string verb = employee.status == "SUSPENDED" ? "Reinstated "
                             : approved                     ? "Changed "
                                                            : "Approved ";
    return changed(before, verb + personText(employee) + ": office " + printable(office.name) + ", role " +
                               role + ", joined on " + joinedOn + (lastDay ? ", last day " + *lastDay : "") +
                               ".");
}

ChangedEmployee EmployeeDecisions::reject(const std::string &email)
{
    const PlacedEmployee person = requireEmployee(m_connection, email);
    // Rejected means never approved: only so does the first approval stay known, and with it the day of
    // joining.
    if (!neverApproved(person.employee))
        throw refused(personText(person.employee) + " was approved before. Use suspend instead.");
    return lockOut(person, "REJECTED", "rejected");
}

ChangedEmployee EmployeeDecisions::suspend(const std::string &email)
{
    const PlacedEmployee person = requireEmployee(m_connection, email);
    if (neverApproved(person.employee))
        throw refused(personText(person.employee) + " was never approved. Use reject instead.");
    return lockOut(person, "SUSPENDED", "suspended");
}

ChangedEmployee EmployeeDecisions::lockOut(const PlacedEmployee &person, const std::string &status,
                                           const std::string &verb)
{
    const Employee &employee = person.employee;
    m_sessions.endAll(m_connection, employee.id); // also the second time: none may be left over
    if (employee.status == status)
        return unchanged(person, personText(employee) + " is " + verb + " already");
    m_connection.execute("UPDATE employees SET status = :status WHERE id = :id", status, employee.id);
    return changed(person, personText(employee) + " is " + verb + " now and signed out everywhere.");
}

ChangedEmployee EmployeeDecisions::assignOffice(const std::string &email, const std::string &officeName)
{
    const PlacedEmployee person = requireEmployee(m_connection, email);
    const Employee &employee = person.employee;
    const Office office = officeToBe(m_connection, person, officeName);
    if (employee.officeId == office.id && employee.companyId)
        return unchanged(person,
                         personText(employee) + " has the office " + printable(office.name) + " already");
    place(employee, office.id);
    return changed(person,
                   "Assigned " + personText(employee) + " to the office " + printable(office.name) + ".");
}

ChangedEmployee EmployeeDecisions::setLastDay(const std::string &email, Day lastDay)
{
    const PlacedEmployee person = requireEmployee(m_connection, email);
    const std::string text = "The last day of " + personText(person.employee) + " is " + toText(lastDay);
    if (person.employee.lastDay == toText(lastDay))
        return unchanged(person, text + " already");
    requirePossible(person.employee, toText(lastDay));
    storeLastDay(person.employee, toText(lastDay));
    return changed(person, text + " now.");
}

ChangedEmployee EmployeeDecisions::clearLastDay(const std::string &email)
{
    const PlacedEmployee person = requireEmployee(m_connection, email);
    const auto &lastDay = person.employee.lastDay;
    if (!lastDay)
        return unchanged(person, personText(person.employee) + " has no last day");
    storeLastDay(person.employee, std::nullopt);
    return changed(person, "Took back the last day of " + personText(person.employee) + ", which was " +
                               *lastDay + ".");
}

ChangedEmployee EmployeeDecisions::changed(const PlacedEmployee &before, const std::string &text)
{
    return {{true, text}, before, requireEmployee(m_connection, before.employee.email)};
}

void EmployeeDecisions::requirePossible(const Employee &employee, const std::string &lastDay)
{
    if (neverApproved(employee))
        throw refused(personText(employee) + " was never approved, and so has no working days.");
    if (lastDay < employee.joinedOn)
        throw refused(personText(employee) + " joined on " + employee.joinedOn +
                      ", which is after the last day " + lastDay + ".");
    const auto checkIn = m_connection.value<std::string>(
        "SELECT COALESCE(MAX(work_date), '') FROM attendance WHERE employee_id = :employee"
        " AND check_in_at IS NOT NULL AND work_date > :last",
        employee.id, lastDay);
    if (!checkIn.empty())
        throw refused(personText(employee) + " checked in on " + checkIn + ", which is after the last day " +
                      lastDay + ". Choose a later one, or void that day first.");
}

void EmployeeDecisions::storeLastDay(const Employee &employee, const std::optional<std::string> &lastDay)
{
    m_connection.execute("UPDATE employees SET last_day = :last WHERE id = :id", lastDay, employee.id);
}

void EmployeeDecisions::place(const Employee &employee, const std::string &officeId)
{
    m_connection.execute("UPDATE employees SET office_id = :office, company_id = COALESCE(company_id,"
                         " (SELECT company_id FROM offices WHERE id = :same)) WHERE id = :id",
                         officeId, officeId, employee.id);
}

} // namespace clockwell::server
