#include "server/admin/EmployeeChanges.h"

#include "server/admin/AdminError.h"
#include "server/admin/OfficeLookup.h"
#include "server/admin/Table.h"
#include "server/attendance/CalendarDay.h"
#include "server/attendance/TimeZone.h"

#include <algorithm>
#include <vector>

namespace clockwell::server {

namespace {

AdminError refusal(const std::string &text)
{
    return {AdminError::Kind::Refused, text};
}

bool neverApproved(const EmployeeEntry &employee)
{
    return employee.status == "PENDING" || employee.status == "REJECTED";
}

/// The office that an employee without one gets when none is named.
OfficeEntry onlyPossibleOffice(Connection &connection, const EmployeeEntry &employee)
{
    auto offices = listOffices(connection);
    std::erase_if(offices, [&](const OfficeEntry &office) {
        return employee.instituteId && office.instituteId != *employee.instituteId;
    });
    if (offices.size() == 1)
        return offices.front();
    const std::string who = personText(employee) + " has no office";
    if (offices.empty())
        throw refusal(who + ", and there is none" +
                      (employee.companyName ? " in the company " + printable(*employee.companyName) : "") +
                      " to assign.");
    throw refusal(who + ". Pass --office with one of: " + officeNames(offices) + ".");
}

OfficeEntry officeToBe(Connection &connection, const EmployeeEntry &employee,
                       const std::optional<std::string> &wished)
{
    if (!wished && !employee.officeId)
        return onlyPossibleOffice(connection, employee);
    OfficeEntry office = requireOfficeNamed(connection, wished ? *wished : *employee.officeId);
    if (employee.instituteId && office.instituteId != *employee.instituteId)
        throw refusal("The office " + printable(office.name) + " belongs to the company " +
                      printable(office.companyName) + ", but " + personText(employee) + " to " +
                      printable(employee.companyName.value_or("another one")) + ".");
    return office;
}

std::string todayIn(const OfficeEntry &office, Instant now)
{
    const auto zone = TimeZone::named(office.timeZoneName);
    if (!zone)
        throw refusal("The time zone " + printable(office.timeZoneName) + " of the office " +
                      printable(office.name) + " is not known here.");
    return toText(zone->dayOf(now));
}

} // namespace

EmployeeChange EmployeeChanges::approve(const ApprovalWishes &wishes)
{
    const EmployeeEntry employee = requireEmployee(m_connection, wishes.email);
    const bool approved = employee.status == "APPROVED";
    if (!approved && employee.emailVerified == 0 && !wishes.evenUnverified)
        throw refusal(personText(employee) +
                      " has not verified the e-mail address yet. Wait for that, or pass --even-unverified;"
                      " signing in stays impossible until it is verified.");
    const OfficeEntry office = officeToBe(m_connection, employee, wishes.office);
    const std::string role = wishes.role.value_or(employee.role);
    if (approved && employee.officeId == office.id && employee.instituteId && employee.role == role)
        return {false, personText(employee) + " is approved already; nothing was changed.", employee,
                employee};
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
    return {true,
            verb + personText(employee) + ": office " + printable(office.name) + ", role " + role +
                ", joined on " + joinedOn + (lastDay ? ", last day " + *lastDay : "") + ".",
            employee, requireEmployee(m_connection, employee.email)};
}

EmployeeChange EmployeeChanges::reject(const std::string &email)
{
    const EmployeeEntry employee = requireEmployee(m_connection, email);
    // Rejected means never approved: only so does the first approval stay known, and with it the day of
    // joining.
    if (!neverApproved(employee))
        throw refusal(personText(employee) + " was approved before. Use suspend instead.");
    return lockOut(employee, "REJECTED", "rejected");
}

EmployeeChange EmployeeChanges::suspend(const std::string &email)
{
    const EmployeeEntry employee = requireEmployee(m_connection, email);
    if (neverApproved(employee))
        throw refusal(personText(employee) + " was never approved. Use reject instead.");
    return lockOut(employee, "SUSPENDED", "suspended");
}

EmployeeChange EmployeeChanges::lockOut(const EmployeeEntry &employee, const std::string &status,
                                        const std::string &verb)
{
    m_sessions.endAll(m_connection, employee.id); // also the second time: none may be left over
    if (employee.status == status)
        return {false, personText(employee) + " is " + verb + " already; nothing was changed.", employee,
                employee};
    m_connection.execute("UPDATE employees SET status = :status WHERE id = :id", status, employee.id);
    return {true, personText(employee) + " is " + verb + " now and signed out everywhere.", employee,
            requireEmployee(m_connection, employee.email)};
}

EmployeeChange EmployeeChanges::assignOffice(const std::string &email, const std::string &officeName)
{
    const EmployeeEntry employee = requireEmployee(m_connection, email);
    const OfficeEntry office = officeToBe(m_connection, employee, officeName);
    if (employee.officeId == office.id && employee.instituteId)
        return {false,
                personText(employee) + " has the office " + printable(office.name) +
                    " already; nothing was changed.",
                employee, employee};
    place(employee, office.id);
    return {true, "Assigned " + personText(employee) + " to the office " + printable(office.name) + ".",
            employee, requireEmployee(m_connection, employee.email)};
}

EmployeeChange EmployeeChanges::setLastDay(const std::string &email, Day lastDay)
{
    const EmployeeEntry employee = requireEmployee(m_connection, email);
    const std::string text = "The last day of " + personText(employee) + " is " + toText(lastDay);
    if (employee.lastDay == toText(lastDay))
        return {false, text + " already; nothing was changed.", employee, employee};
    requirePossible(employee, toText(lastDay));
    return storeLastDay(employee, toText(lastDay), text + " now.");
}

EmployeeChange EmployeeChanges::clearLastDay(const std::string &email)
{
    const EmployeeEntry employee = requireEmployee(m_connection, email);
    if (!employee.lastDay)
        return {false, personText(employee) + " has no last day; nothing was changed.", employee, employee};
    return storeLastDay(employee, std::nullopt,
                        "Took back the last day of " + personText(employee) + ", which was " +
                            *employee.lastDay + ".");
}

void EmployeeChanges::requirePossible(const EmployeeEntry &employee, const std::string &lastDay)
{
    if (neverApproved(employee))
        throw refusal(personText(employee) + " was never approved, and so has no working days.");
    if (lastDay < employee.joinedOn)
        throw refusal(personText(employee) + " joined on " + employee.joinedOn +
                      ", which is after the last day " + lastDay + ".");
    const auto checkIn = m_connection.value<std::string>(
        "SELECT COALESCE(MAX(work_date), '') FROM attendance WHERE employee_id = :employee"
        " AND check_in_at IS NOT NULL AND work_date > :last",
        employee.id, lastDay);
    if (!checkIn.empty())
        throw refusal(personText(employee) + " checked in on " + checkIn + ", which is after the last day " +
                      lastDay + ". Choose a later one, or void that day first.");
}

EmployeeChange EmployeeChanges::storeLastDay(const EmployeeEntry &employee,
                                             const std::optional<std::string> &lastDay,
                                             const std::string &text)
{
    m_connection.execute("UPDATE employees SET last_day = :last WHERE id = :id", lastDay, employee.id);
    return {true, text, employee, requireEmployee(m_connection, employee.email)};
}

void EmployeeChanges::place(const EmployeeEntry &employee, const std::string &officeId)
{
    m_connection.execute("UPDATE employees SET office_id = :office, institute_id = COALESCE(institute_id,"
                         " (SELECT institute_id FROM offices WHERE id = :same)) WHERE id = :id",
                         officeId, officeId, employee.id);
}

} // namespace clockwell::server
