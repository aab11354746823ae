#include "server/admin/Audit.h"

#include "server/admin/AdminError.h"
#include "server/admin/Employees.h"
#include "server/storage/Instant.h"
#include "server/storage/RowType.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

namespace clockwell::server {

namespace {

constexpr const char *administratorRole = "ADMIN";

/// Who runs this program, not whose rights it has.
std::string operatingSystemUser()
{
    const uid_t user = ::getuid();
    passwd entry{};
    passwd *found = nullptr;
    std::array<char, 4096> texts{};
    if (::getpwuid_r(user, &entry, texts.data(), texts.size(), &found) == 0 && found != nullptr)
        return found->pw_name;
    return "user " + std::to_string(user);
}

Employee requireAdministrator(Connection &connection, const std::string &email)
{
    Employee person = requireEmployee(connection, email).employee;
    if (person.role != administratorRole || person.status != "APPROVED")
        throw refused(personText(person) + " has the role " + person.role + " and is " +
                      lowerAscii(person.status) + ". --as has to name an approved account with the role " +
                      administratorRole + ".");
    if (hasLeft(connection, person, systemClock()()))
        throw refused("The last day of " + personText(person) + " was " + *person.lastDay + ".");
    return person;
}

std::optional<std::string> storedJson(const Json &json)
{
    if (json.is_null())
        return std::nullopt;
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string auditSql(const std::string &rest)
{
    return "SELECT " + columnsOf<AuditEntry>("a") + " FROM audit a WHERE " + rest + " ORDER BY a.number";
}

Instant midnightUtc(Day day)
{
    return Instant{day.time_since_epoch()};
}

} // namespace

Audit::Audit(Connection &connection, const std::optional<std::string> &as) : m_connection(connection)
{
    if (as)
        m_administrator = requireAdministrator(connection, *as);
}

void Audit::add(const AuditedChange &change) const
{
    const auto administrator = m_administrator ? std::optional{m_administrator->email} : std::nullopt;
    m_connection.execute(
        "INSERT INTO audit (number, at, os_user, administrator, command, subject, subject_id, day, reason,"
        " value_before, value_after) VALUES ((SELECT COALESCE(MAX(number), 0) + 1 FROM audit), :at, :user,"
        " :administrator, :command, :subject, :id, :day, :reason, :before, :after)",
        toMillis(systemClock()()), operatingSystemUser(), administrator, change.command, change.subject,
        change.subjectId, change.day, change.reason, storedJson(change.before), storedJson(change.after));
}

std::vector<AuditEntry> listAudit(Connection &connection, const AuditFilter &filter)
{
    static const std::string sql = auditSql("at >= :from AND at < :end");
    constexpr Day firstDay{};
    const Day lastDay = parseDay("9999-12-31").value();
    const Day end = filter.to.value_or(lastDay) + std::chrono::days{1};
    auto entries = connection.all<AuditEntry>(sql, toMillis(midnightUtc(filter.from.value_or(firstDay))),
                                              toMillis(midnightUtc(end)));
    if (filter.email) {
        const std::string key = emailKey(*filter.email);
        std::erase_if(entries, [&](const AuditEntry &entry) {
            return emailKey(entry.subject) != key && emailKey(entry.administrator.value_or("")) != key;
        });
    }
    return entries;
}

std::vector<AuditEntry> listCorrections(Connection &connection, const std::string &employeeId, Day day)
{
    static const std::string sql =
        auditSql("subject_id = :employee AND day = :day AND command IN ('days correct', 'days void')");
    return connection.all<AuditEntry>(sql, employeeId, toText(day));
}

} // namespace clockwell::server
