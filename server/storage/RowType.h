#pragma once

#include <sstream>
#include <string>

namespace clockwell::server {

// There is one type for the rows of a table. Beside its columns() it lists their names in `columnNames`, in
// the same order and with blanks between them. A query that joins tables reads such rows side by side.

/// What a query selects for a Row from the table with this alias: "o.id, o.name".
template <class Row>
std::string columnsOf(const std::string &alias)
{
    std::istringstream names{Row::columnNames};
    std::string list;
    for (std::string name; names >> name;)
        list.append(list.empty() ? "" : ", ").append(alias).append(".").append(name);
    return list;
}

} // namespace clockwell::server
