#pragma once

#include "server/admin/Companies.h"
#include "server/admin/Outcome.h"
#include "server/attendance/CalendarDay.h"
#include "server/attendance/Offices.h"
#include "server/auth/Accounts.h"
#include "server/auth/Sessions.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// An employee, with the company and the office; these are empty for somebody who has none.
struct PlacedEmployee
{
    Employee employee;
    Company company;
    Office office;

    auto columns() { return std::tuple_cat(employee.columns(), company.columns(), office.columns()); }
};

/// "kim@example.org (Kim Sample)", for a terminal.
std::string personText(const Employee &employee);

/// All employees by name.
std::vector<PlacedEmployee> listEmployees(Connection &connection);

/// The employee with this e-mail address. Throws AdminError NotFound, naming addresses that look alike.
PlacedEmployee requireEmployee(Connection &connection, const std::string &email);

/// What a command did to an employee.
struct ChangedEmployee
{
    Outcome outcome;
    PlacedEmployee before;
    PlacedEmployee after;
};

struct Approval
{
    std::string email;
    std::optional<std::string> office; ///< name or identifier
    std::optional<std::string> role;
    bool evenUnverified = false;
};

/// What administrators decide about employees. Every operation is a part of the caller's transaction and
/// throws AdminError when it is refused. One that finds everything so already changes nothing and says so.
class EmployeeDecisions
{
public:
    EmployeeDecisions(Connection &connection, const Sessions &sessions, Instant now)
        : m_connection(connection), m_sessions(sessions), m_now(now)
    {}

    /// Lets the employee sign in, also again after a suspension. The first approval sets the day of joining
    /// to today in the office's time zone. When no office is named, the one the employee has stays, else the
    /// only possible one is taken.
    ChangedEmployee approve(const Approval &approval);
    /// Turns an application down; for people who were never approved.
    ChangedEmployee reject(const std::string &email);
    /// Locks an approved employee out until the next approval, at once on all devices.
    ChangedEmployee suspend(const std::string &email);
    ChangedEmployee assignOffice(const std::string &email, const std::string &officeName);
    /// Sets the last day of an employment, or changes it. No day with a check-in may be left behind it, for
    /// what was recorded counts.
    ChangedEmployee setLastDay(const std::string &email, Day lastDay);
    ChangedEmployee clearLastDay(const std::string &email);

private:
    ChangedEmployee changed(const PlacedEmployee &before, const std::string &text);
    ChangedEmployee lockOut(const PlacedEmployee &person, const std::string &status, const std::string &verb);
    void requirePossible(const Employee &employee, const std::string &lastDay);
    void storeLastDay(const Employee &employee, const std::optional<std::string> &lastDay);
    void place(const Employee &employee, const std::string &officeId);

    Connection &m_connection;
    const Sessions &m_sessions;
    Instant m_now;
};

} // namespace clockwell::server
