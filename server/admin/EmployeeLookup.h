#pragma once

#include "server/storage/Connection.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// An employee as administrators see one; the password's hash is not even read.
struct EmployeeEntry
{
    std::string id;
    std::optional<std::string> instituteId;
    std::optional<std::string> officeId;
    std::string fullName;
    std::string email;
    std::optional<std::string> phone;
    std::string role;
    std::string status; ///< PENDING, APPROVED, REJECTED or SUSPENDED
    long long emailVerified = 0;
    std::string joinedOn;               ///< "yyyy-MM-dd"; before the approval, the day of the sign-up
    std::optional<std::string> lastDay; ///< "yyyy-MM-dd", the last date of the employment, if one is known
    std::optional<std::string> companyName;
    std::optional<std::string> officeName;

    auto columns()
    {
        return std::tie(id, instituteId, officeId, fullName, email, phone, role, status, emailVerified,
                        joinedOn, lastDay, companyName, officeName);
    }
};

/// "kim@example.org (Kim Sample)", for a terminal.
std::string personText(const std::string &email, const std::string &fullName);
std::string personText(const EmployeeEntry &employee);

/// All employees by name.
std::vector<EmployeeEntry> listEmployees(Connection &connection);

/// The employee with this e-mail address. Throws AdminError NotFound, naming addresses that look alike.
EmployeeEntry requireEmployee(Connection &connection, const std::string &email);

} // namespace clockwell::server
