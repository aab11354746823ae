#pragma once

#include "server/admin/AdminJson.h"
#include "server/admin/Employees.h"

#include <vector>

namespace clockwell::server {

/// Of the form in docs/administration.md.
Json employeeJson(const PlacedEmployee &person);

// Both print to standard output: a text for people, or JSON of that form.

void printEmployees(const std::vector<PlacedEmployee> &people, bool json);
void printEmployee(const PlacedEmployee &person, bool json);

} // namespace clockwell::server
