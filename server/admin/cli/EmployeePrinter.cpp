#include "server/admin/cli/EmployeePrinter.h"

#include "server/admin/cli/CommandParts.h"
#include "server/admin/cli/Table.h"

#include <cstdio>

namespace clockwell::server {

namespace {

std::string yesOrNo(const Employee &employee)
{
    return employee.emailVerified != 0 ? "yes" : "no";
}

std::string companyText(const PlacedEmployee &person)
{
    return person.employee.companyId ? person.company.name : "-";
}

std::string officeText(const PlacedEmployee &person)
{
    return person.employee.officeId ? person.office.name : "-";
}

} // namespace

Json employeeJson(const PlacedEmployee &person)
{
    const Employee &employee = person.employee;
    Json json;
    json["email"] = employee.email;
    json["fullName"] = employee.fullName;
    json["phone"] = optionalJson(employee.phone);
    json["role"] = employee.role;
    json["status"] = employee.status;
    json["emailVerified"] = employee.emailVerified != 0;
    json["company"] = employee.companyId ? Json(person.company.name) : Json(nullptr);
    json["office"] = employee.officeId ? Json(person.office.name) : Json(nullptr);
    json["joinedOn"] = employee.joinedOn;
    json["lastDay"] = optionalJson(employee.lastDay);
    return json;
}

void printEmployees(const std::vector<PlacedEmployee> &people, bool json)
{
    Listing listing;
    listing.none = "No employees.";
    listing.header = {"NAME", "E-MAIL", "STATUS", "VERIFIED", "ROLE", "OFFICE", "JOINED", "LAST DAY"};
    listing.rows.reserve(people.size());
    for (const PlacedEmployee &person : people) {
        const Employee &employee = person.employee;
        listing.rows.push_back({employee.fullName, employee.email, employee.status, yesOrNo(employee),
                                employee.role, officeText(person), employee.joinedOn,
                                employee.lastDay.value_or("-")});
        listing.objects.push_back(employeeJson(person));
    }
    printListing(listing, json);
}

void printEmployee(const PlacedEmployee &person, bool json)
{
    if (json)
        return printJson(employeeJson(person));
    const Employee &employee = person.employee;
    const std::string text =
        tableText({"Name", employee.fullName}, {{"E-mail", employee.email},
                                                {"Verified", yesOrNo(employee)},
                                                {"Phone", employee.phone.value_or("-")},
                                                {"Status", employee.status},
                                                {"Role", employee.role},
                                                {"Company", companyText(person)},
                                                {"Office", officeText(person)},
                                                {"Joined", employee.joinedOn},
                                                {"Last day", employee.lastDay.value_or("-")}});
    std::fputs(text.c_str(), stdout);
}

} // namespace clockwell::server
