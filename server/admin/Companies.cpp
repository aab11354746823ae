#include "server/admin/Companies.h"

#include "server/admin/AdminError.h"
#include "server/admin/Printable.h"
#include "server/auth/Accounts.h"
#include "server/storage/RowType.h"

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

/// Codes that differ only in the case of their letters would be one at the sign-up.
std::optional<Company> findCompany(const std::vector<Company> &companies, const std::string &code)
{
    const std::string key = lowerAscii(code);
    const auto found = std::ranges::find_if(
        companies, [&](const Company &company) { return lowerAscii(company.code) == key; });
    return found == companies.end() ? std::nullopt : std::optional{*found};
}

} // namespace

std::vector<Company> listCompanies(Connection &connection)
{
    static const std::string sql =
        "SELECT " + columnsOf<Company>("c") + " FROM companies c ORDER BY c.name, c.code";
    return connection.all<Company>(sql);
}

Company requireCompany(Connection &connection, const std::optional<std::string> &code)
{
    const auto companies = listCompanies(connection);
    if (!code && companies.size() == 1)
        return companies.front();
    if (!code)
        throw refused("Pass --company with one of these codes: " + codesOf(companies) + ".");
    auto found = findCompany(companies, *code);
    if (!found)
        throw notFound("There is no company with the code \"" + printable(*code) +
                       "\". Codes: " + codesOf(companies) + ".");
    return std::move(*found);
}

Outcome addCompany(Connection &connection, const Company &company)
{
    if (const auto known = findCompany(listCompanies(connection), company.code)) {
        if (known->name != company.name || known->code != company.code)
            throw refused("The company " + printable(known->name) + " has the code " +
                          printable(known->code) + " already.");
        return {false, "The company " + known->name + " is there already; nothing was changed."};
    }
    connection.execute("INSERT INTO companies (id, name, code) VALUES (:id, :name, :code)", company.id,
                       company.name, company.code);
    return {true, "Added the company " + company.name + " with the code " + company.code + "."};
}

} // namespace clockwell::server
