#include "server/admin/CompanyLookup.h"

#include "server/admin/AdminError.h"
#include "server/admin/Table.h"
#include "server/auth/Accounts.h"

#include <algorithm>

namespace clockwell::server {

namespace {

std::string codesOf(const std::vector<Company> &companies)
{
    std::string codes;
    for (const Company &company : companies)
        codes += (codes.empty() ? "" : ", ") + printable(company.code);
    return codes.empty() ? "none yet; `companies add` makes one" : codes;
}

} // namespace

std::vector<Company> listCompanies(Connection &connection)
{
    return connection.all<Company>("SELECT id, name, code FROM institutes ORDER BY name, code");
}

Company requireCompany(Connection &connection, const std::optional<std::string> &code)
{
    const auto companies = listCompanies(connection);
    if (!code && companies.size() == 1)
        return companies.front();
    if (!code)
        throw AdminError{AdminError::Kind::Refused,
                         "Pass --company with one of these codes: " + codesOf(companies) + "."};
    const std::string key = lowerAscii(*code);
    const auto found = std::find_if(companies.begin(), companies.end(),
                                    [&](const Company &company) { return lowerAscii(company.code) == key; });
    if (found == companies.end())
        throw AdminError{AdminError::Kind::NotFound, "There is no company with the code \"" +
                                                         printable(*code) +
                                                         "\". Codes: " + codesOf(companies) + "."};
    return *found;
}

} // namespace clockwell::server
