#pragma once

#include "server/mail/Mail.h"
#include "server/storage/Connection.h"
#include "server/storage/Instant.h"

#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace clockwell::server {

/// One row of the table of employees.
struct Employee
{
    std::string id;
    std::optional<std::string> companyId;
    std::optional<std::string> officeId;
    std::string fullName;
    std::string email;
    std::optional<std::string> phone;
    std::string passwordHash;
    std::string role;
    std::string status; ///< PENDING, APPROVED, REJECTED or SUSPENDED
    long long emailVerified = 0;
    std::string joinedOn;               ///< "yyyy-MM-dd", in the office's calendar
    std::optional<std::string> lastDay; ///< likewise, the last date of the employment, if one is known

    static constexpr const char *columnNames = "id company_id office_id full_name email phone password_hash"
                                               " role status email_verified joined_on last_day";
    auto columns()
    {
        return std::tie(id, companyId, officeId, fullName, email, phone, passwordHash, role, status,
                        emailVerified, joinedOn, lastDay);
    }
};

/// With the letters A to Z in lower case; everything else stays.
std::string lowerAscii(std::string_view text);

/// The form of an e-mail address under which an account is found: ASCII letters in lower case, no blanks
/// around it.
std::string emailKey(std::string_view email);

std::optional<Employee> findEmployeeByEmail(Connection &connection, std::string_view email);
std::optional<Employee> findEmployeeById(Connection &connection, const std::string &id);

/// Of an e-mail to the account: who has not proven the address may be anybody.
Precedence precedenceOf(const Employee &employee);

/// Whether the employee's last day is over, on the clock of their office or, without one, in UTC.
bool hasLeft(Connection &connection, const Employee &employee, Instant now);

/// Passes only for an account that may use the server: e-mail verified, approved, its last day not over.
/// Throws ApiError 403 otherwise.
void requireUsable(Connection &connection, const Employee &employee, Instant now);

} // namespace clockwell::server
