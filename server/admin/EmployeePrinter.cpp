#include "server/admin/EmployeePrinter.h"

#include "server/admin/Table.h"

#include <cstdio>

namespace clockwell::server {

namespace {

std::string verifiedText(const EmployeeEntry &employee)
{
    return employee.emailVerified != 0 ? "yes" : "no";
}

} // namespace

Json employeeJson(const EmployeeEntry &employee)
{
    Json json;
    json["email"] = employee.email;
    json["fullName"] = employee.fullName;
    json["phone"] = optionalJson(employee.phone);
    json["role"] = employee.role;
    json["status"] = employee.status;
    json["emailVerified"] = employee.emailVerified != 0;
    json["company"] = optionalJson(employee.companyName);
    json["office"] = optionalJson(employee.officeName);
    json["joinedOn"] = employee.joinedOn;
    json["lastDay"] = optionalJson(employee.lastDay);
    return json;
}

void printEmployees(const std::vector<EmployeeEntry> &employees, bool json)
{
    if (json) {
        Json list = Json::array();
        for (const EmployeeEntry &employee : employees)
            list.push_back(employeeJson(employee));
        return printJson(list);
    }
    if (employees.empty()) {
        std::printf("No employees.\n");
        return;
    }
    std::vector<std::vector<std::string>> rows;
    rows.reserve(employees.size());
    for (const EmployeeEntry &employee : employees)
        rows.push_back({employee.fullName, employee.email, employee.status, verifiedText(employee),
                        employee.role, employee.officeName.value_or("-"), employee.joinedOn,
                        employee.lastDay.value_or("-")});
    const std::string text =
        tableText({"NAME", "E-MAIL", "STATUS", "VERIFIED", "ROLE", "OFFICE", "JOINED", "LAST DAY"}, rows);
    std::fputs(text.c_str(), stdout);
}

void printEmployee(const EmployeeEntry &employee, bool json)
{
    if (json)
        return printJson(employeeJson(employee));
    const std::string text =
        tableText({"Name", employee.fullName}, {{"E-mail", employee.email},
                                                {"Verified", verifiedText(employee)},
                                                {"Phone", employee.phone.value_or("-")},
                                                {"Status", employee.status},
                                                {"Role", employee.role},
                                                {"Company", employee.companyName.value_or("-")},
                                                {"Office", employee.officeName.value_or("-")},
                                                {"Joined", employee.joinedOn},
                                                {"Last day", employee.lastDay.value_or("-")}});
    std::fputs(text.c_str(), stdout);
}

void printChange(const EmployeeChange &change, bool json)
{
    if (!json) {
        std::printf("%s\n", change.text.c_str());
        return;
    }
    Json object;
    object["changed"] = change.changed;
    object["message"] = change.text;
    object["employee"] = employeeJson(change.employee);
    printJson(object);
}

} // namespace clockwell::server
