#pragma once

#include "server/admin/EmployeeLookup.h"
#include "server/attendance/CalendarDay.h"
#include "server/auth/Sessions.h"
#include "server/storage/Instant.h"

#include <optional>
#include <string>

namespace clockwell::server {

/// What a command did to an employee.
struct EmployeeChange
{
    bool changed = false; ///< false: it was so already
    std::string text;     ///< one sentence for the administrator
    EmployeeEntry before;
    EmployeeEntry employee; ///< as it is now
};

struct ApprovalWishes
{
    std::string email;
    std::optional<std::string> office; ///< name or identifier
    std::optional<std::string> role;
    bool evenUnverified = false;
};

/// What administrators decide about employees. Every operation is a part of the caller's transaction and
/// throws AdminError when it is refused. One that finds everything as wished changes nothing and says so.
class EmployeeChanges
{
public:
    EmployeeChanges(Connection &connection, const Sessions &sessions, Instant now)
        : m_connection(connection), m_sessions(sessions), m_now(now)
    {}

    /// Lets the employee sign in, also again after a suspension. The first approval sets the day of joining
    /// to today in the office's time zone. Without an office in the wishes, the one the employee has stays,
    /// else the only possible one is taken.
    EmployeeChange approve(const ApprovalWishes &wishes);
    /// Turns an application down; for people who were never approved.
    EmployeeChange reject(const std::string &email);
    /// Locks an approved employee out until the next approval, at once on all devices.
    EmployeeChange suspend(const std::string &email);
    EmployeeChange assignOffice(const std::string &email, const std::string &office);
    /// Sets the last day of an employment, or changes it. No day with a check-in may be left behind it, for
    /// what was recorded counts.
    EmployeeChange setLastDay(const std::string &email, Day lastDay);
    EmployeeChange clearLastDay(const std::string &email);

private:
    EmployeeChange lockOut(const EmployeeEntry &employee, const std::string &status, const std::string &verb);
    void requirePossible(const EmployeeEntry &employee, const std::string &lastDay);
    EmployeeChange storeLastDay(const EmployeeEntry &employee, const std::optional<std::string> &lastDay,
                                const std::string &text);
    void place(const EmployeeEntry &employee, const std::string &officeId);

    Connection &m_connection;
    const Sessions &m_sessions;
    Instant m_now;
};

} // namespace clockwell::server
