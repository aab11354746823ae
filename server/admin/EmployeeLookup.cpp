#include "server/admin/EmployeeLookup.h"

#include "server/admin/AdminError.h"
#include "server/admin/Table.h"
#include "server/auth/Accounts.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace clockwell::server {

namespace {

constexpr std::size_t mostSuggestions = 3;

std::string employeeSql(const std::string &rest)
{
    return "SELECT e.id, e.institute_id, e.office_id, e.full_name, e.email, e.phone, e.role, e.status,"
           " e.email_verified, e.joined_on, e.last_day, i.name, o.name FROM employees e"
           " LEFT JOIN institutes i ON i.id = e.institute_id LEFT JOIN offices o ON o.id = e.office_id " +
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
    for (const EmployeeEntry &employee : listEmployees(connection)) {
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

} // namespace

std::string personText(const std::string &email, const std::string &fullName)
{
    return printable(email) + " (" + printable(fullName) + ")";
}

std::string personText(const EmployeeEntry &employee)
{
    return personText(employee.email, employee.fullName);
}

std::vector<EmployeeEntry> listEmployees(Connection &connection)
{
    static const std::string sql = employeeSql("ORDER BY e.full_name, e.email_key");
    return connection.all<EmployeeEntry>(sql);
}

EmployeeEntry requireEmployee(Connection &connection, const std::string &email)
{
    static const std::string sql = employeeSql("WHERE e.email_key = :key");
    const std::string key = emailKey(email);
    auto employee = connection.first<EmployeeEntry>(sql, key);
    if (!employee)
        throw AdminError{AdminError::Kind::NotFound, "There is no employee with the e-mail address " +
                                                         printable(email) + "." +
                                                         suggestion(connection, key)};
    return std::move(*employee);
}

} // namespace clockwell::server
