#include "server/auth/Accounts.h"

#include "server/attendance/TimeZone.h"
#include "server/auth/EmailAddress.h"
#include "server/http/ApiError.h"
#include "server/storage/RowType.h"

#include <array>

namespace clockwell::server {

namespace {

Day dateFor(Connection &connection, const Employee &employee, Instant now)
{
    if (employee.officeId) {
        const auto zone = TimeZone::named(connection.value<std::string>(
            "SELECT time_zone FROM offices WHERE id = :id", *employee.officeId));
        if (zone)
            return zone->dayOf(now);
    }
    return Day{std::chrono::floor<std::chrono::days>(now).time_since_epoch()};
}

} // namespace

std::string lowerAscii(std::string_view text)
{
    std::string lower{text};
    for (char &c : lower)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return lower;
}

std::string emailKey(std::string_view email)
{
    return lowerAscii(trimmed(email));
}

std::optional<Employee> findEmployeeByEmail(Connection &connection, std::string_view email)
{
    static const std::string sql =
        "SELECT " + columnsOf<Employee>("e") + " FROM employees e WHERE e.email_key = :key";
    return connection.first<Employee>(sql, emailKey(email));
}

std::optional<Employee> findEmployeeById(Connection &connection, const std::string &id)
{
    static const std::string sql =
        "SELECT " + columnsOf<Employee>("e") + " FROM employees e WHERE e.id = :id";
    return connection.first<Employee>(sql, id);
}

Precedence precedenceOf(const Employee &employee)
{
    return employee.emailVerified != 0 ? Precedence::Own : Precedence::Stranger;
}

bool hasLeft(Connection &connection, const Employee &employee, Instant now)
{
    return employee.lastDay && *employee.lastDay < toText(dateFor(connection, employee, now));
}

void requireUsable(Connection &connection, const Employee &employee, Instant now)
{
    struct Refusal
    {
        std::string_view status;
        const char *error;
        const char *message;
    };
    static constexpr std::array refusals{
        Refusal{"PENDING", "ACCOUNT_PENDING", "Your account is waiting for an administrator's approval."},
        Refusal{"REJECTED", "ACCOUNT_REJECTED",
                "Your account was not approved. Please ask your administrator."},
        Refusal{"SUSPENDED", "ACCOUNT_SUSPENDED",
                "Your account is suspended. Please ask your administrator."},
    };
    if (employee.emailVerified == 0)
        throw ApiError{403, "EMAIL_NOT_VERIFIED", "Please verify your e-mail address first."};
    for (const Refusal &refusal : refusals)
        if (employee.status == refusal.status)
            throw ApiError{403, refusal.error, refusal.message};
    if (hasLeft(connection, employee, now))
        throw ApiError{403, "EMPLOYMENT_ENDED",
                       "Your last working day was " + *employee.lastDay +
                           ". If that is wrong, please ask your administrator."};
}

} // namespace clockwell::server
