#pragma once

#include "server/admin/AdminJson.h"
#include "server/attendance/CalendarDay.h"
#include "server/auth/Accounts.h"
#include "server/storage/Connection.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// A change that a command is making.
struct AuditedChange
{
    std::string command;            ///< e.g. "leave add"
    std::string subject;            ///< whom or what it is about: an e-mail address, or a name
    std::string subjectId;          ///< the identifier of that
    std::optional<std::string> day; ///< "yyyy-MM-dd" when it is about one day
    Json before;                    ///< what it was; null for what was not there
    Json after;                     ///< what it is; null for what is gone
    std::optional<std::string> reason = std::nullopt;
};

/// Who changes something, and the record of it. A part of the transaction in which the change is made, so
/// that none is made without its record.
class Audit
{
public:
    /// `as`: the e-mail address of the administrator who acts, if one is named. Throws AdminError when that
    /// is not an approved administrator's, or one's who has left.
    Audit(Connection &connection, const std::optional<std::string> &as);

    /// The one who was named.
    const std::optional<Employee> &administrator() const { return m_administrator; }

    void add(const AuditedChange &change) const;

private:
    Connection &m_connection;
    std::optional<Employee> m_administrator;
};

/// A change as it is kept. The schema refuses to change or to delete one.
struct AuditEntry
{
    long long number = 0;                     ///< counts the changes from 1
    long long at = 0;                         ///< milliseconds since 1970, UTC
    std::string osUser;                       ///< who ran the command, by the operating system's name
    std::optional<std::string> administrator; ///< the e-mail address that was named with --as
    std::string command;
    std::string subject;
    std::string subjectId;
    std::optional<std::string> day;
    std::optional<std::string> reason;
    std::optional<std::string> before; ///< JSON
    std::optional<std::string> after;  ///< JSON

    static constexpr const char *columnNames =
        "number at os_user administrator command subject subject_id day"
        " reason value_before value_after";
    auto columns()
    {
        return std::tie(number, at, osUser, administrator, command, subject, subjectId, day, reason, before,
                        after);
    }
};

/// Which changes are listed.
struct AuditFilter
{
    std::optional<std::string> email; ///< only changes about or by this person
    std::optional<Day> from;          ///< only changes from this day on, UTC
    std::optional<Day> to;            ///< and to this day, included
};

/// In the order in which the changes were made.
std::vector<AuditEntry> listAudit(Connection &connection, const AuditFilter &filter);

/// The corrections of an employee's day, in that order.
std::vector<AuditEntry> listCorrections(Connection &connection, const std::string &employeeId, Day day);

} // namespace clockwell::server
