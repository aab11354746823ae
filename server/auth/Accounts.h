#pragma once

#include "server/mail/Mail.h"
#include "server/storage/Connection.h"

#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace clockwell::server {

/// One row of the table of employees.
struct Employee
{
    std::string id;
    std::optional<std::string> instituteId;
    std::optional<std::string> officeId;
    std::string fullName;
    std::string email;
    std::optional<std::string> phone;
    std::string passwordHash;
    std::string role;
    std::string status; ///< PENDING, APPROVED, REJECTED or SUSPENDED
    long long emailVerified = 0;
    std::string joinedOn; ///< "yyyy-MM-dd", in the office's calendar

    auto columns()
    {
        return std::tie(id, instituteId, officeId, fullName, email, phone, passwordHash, role, status,
                        emailVerified, joinedOn);
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

/// The columns of `Employee`, in its order, for queries elsewhere that join the table under the name `e`.
const std::string &employeeColumns();

/// Passes only for an account that may use the server: e-mail verified, approved. Throws ApiError 403
/// otherwise.
void requireUsable(const Employee &employee);

} // namespace clockwell::server
