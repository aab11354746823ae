#pragma once

#include "server/admin/AdminJson.h"
#include "server/admin/EmployeeChanges.h"

#include <vector>

namespace clockwell::server {

/// Of the form in docs/administration.md.
Json employeeJson(const EmployeeEntry &employee);

// All print to standard output: a text for people, or JSON of the form in docs/administration.md.

void printEmployees(const std::vector<EmployeeEntry> &employees, bool json);
void printEmployee(const EmployeeEntry &employee, bool json);
void printChange(const EmployeeChange &change, bool json);

} // namespace clockwell::server
