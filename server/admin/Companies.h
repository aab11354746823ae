#pragma once

#include "server/admin/Outcome.h"
#include "server/storage/Connection.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace clockwell::server {

/// One row of the table of companies.
struct Company
{
    std::string id;
    std::string name;
    std::string code; ///< what people enter when they sign up; the case of A to Z does not matter

    static constexpr const char *columnNames = "id name code";
    auto columns() { return std::tie(id, name, code); }
};

/// All companies by name.
std::vector<Company> listCompanies(Connection &connection);

/// The company with this code, or the only one there is when no code is given. Throws AdminError: NotFound
/// with the codes there are, Refused when a code is needed.
Company requireCompany(Connection &connection, const std::optional<std::string> &code);

/// Adds a company, unless it is there already. Throws AdminError Refused when another one has the code.
Outcome addCompany(Connection &connection, const Company &company);

} // namespace clockwell::server
