#include "server/admin/AdminDatabase.h"
#include "server/admin/Audit.h"
#include "server/admin/Employees.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/Offices.h"
#include "server/admin/cli/CommandParts.h"
#include "server/admin/cli/Commands.h"
#include "server/admin/cli/EmployeePrinter.h"

#include <algorithm>

namespace clockwell::server {

namespace {

constexpr std::size_t longestRole = 32; // as in the schema

struct EmployeeOptions
{
    std::shared_ptr<AdminOptions> common;
    Approval approval; // the e-mail address of all commands is in here
    std::string office;
    std::string status;
    std::optional<Day> lastDay;
};
using SharedEmployeeOptions = std::shared_ptr<EmployeeOptions>;

std::string roleProblem(const std::string &text)
{
    const bool letters =
        std::all_of(text.begin(), text.end(), [](char c) { return (c >= 'A' && c <= 'Z') || c == '_'; });
    const bool words =
        !text.empty() && text.front() != '_' && text.back() != '_' && text.find("__") == std::string::npos;
    return letters && words && text.size() <= longestRole
               ? ""
               : "\"" + text + "\" is not a role like EMPLOYEE or TEAM_LEAD";
}

bool hasStatus(const Employee &employee, const std::string &status)
{
    if (status == "unverified")
        return employee.emailVerified == 0;
    return status.empty() || CLI::detail::to_lower(employee.status) == status;
}

void list(const EmployeeOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto employees = database.database().read([&](Connection &connection) {
        auto rows = listEmployees(connection);
        const std::string office =
            options.office.empty() ? "" : requireOfficeNamed(connection, options.office).office.id;
        std::erase_if(rows, [&](const PlacedEmployee &person) {
            return !hasStatus(person.employee, options.status) ||
                   (!office.empty() && person.employee.officeId != office);
        });
        return rows;
    });
    printEmployees(employees, options.common->json);
}

void show(const EmployeeOptions &options)
{
    AdminDatabase database{options.common->database};
    printEmployee(database.database().read([&](Connection &connection) {
        return requireEmployee(connection, options.approval.email);
    }),
                  options.common->json);
}

using EmployeeAction = std::function<ChangedEmployee(EmployeeDecisions &, const EmployeeOptions &)>;

void change(const EmployeeOptions &options, const std::string &name, const EmployeeAction &what)
{
    AdminDatabase database{options.common->database};
    const Sessions sessions{database.database(), systemClock()};
    const ChangedEmployee done = database.write([&](Connection &connection) {
        const Audit audit{connection, options.common->as};
        EmployeeDecisions decisions{connection, sessions, systemClock()()};
        ChangedEmployee person = what(decisions, options);
        const Employee &employee = person.after.employee;
        if (person.outcome.changed)
            audit.add({"employees " + name, employee.email, employee.id, std::nullopt,
                       employeeJson(person.before), employeeJson(person.after)});
        return person;
    });
    printOutcome(done.outcome, "employee", employeeJson(done.after), options.common->json);
}

void addEmail(CLI::App &command, const SharedEmployeeOptions &options)
{
    command.add_option("EMAIL", options->approval.email, "The employee's e-mail address")->required();
}

CLI::App *addChange(CLI::App &group, const std::string &name, const std::string &help,
                    const std::string &example, const SharedEmployeeOptions &options,
                    const ChooseCommand &choose, const EmployeeAction &what)
{
    CLI::App *command = addCommand(group, name, help, " kim@example.org" + example);
    addEmail(*command, options);
    command->callback([=] { choose([=] { change(*options, name, what); }); });
    return command;
}

void addQueries(CLI::App &group, const SharedEmployeeOptions &options, const ChooseCommand &choose)
{
    CLI::App *all = addCommand(group, "list", "List employees", " --status pending");
    all->add_option("--status", options->status, "Only these")
        ->transform(
            CLI::IsMember({"pending", "approved", "rejected", "suspended", "unverified"}, CLI::ignore_case));
    all->add_option("--office", options->office, "Only those of the office with this name or identifier");
    all->callback([=] { choose([=] { list(*options); }); });
    CLI::App *one = addCommand(group, "show", "Show one employee", " kim@example.org");
    addEmail(*one, options);
    one->callback([=] { choose([=] { show(*options); }); });
}

void addApprove(CLI::App &group, const SharedEmployeeOptions &options, const ChooseCommand &choose)
{
    CLI::App *approve = addChange(
        group, "approve", "Let an employee sign in, for the first time or again", " --office \"Head Office\"",
        options, choose,
        [](EmployeeDecisions &decisions, const EmployeeOptions &o) { return decisions.approve(o.approval); });
    approve->add_option("--office", options->approval.office,
                        "The name or identifier of the employee's office [the one there is]");
    approve->add_option("--role", options->approval.role, "The employee's role, e.g. MANAGER")
        ->check(roleProblem);
    approve->add_flag("--even-unverified", options->approval.evenUnverified,
                      "Also when the e-mail address is not verified yet");
}

void addOtherChanges(CLI::App &group, const SharedEmployeeOptions &options, const ChooseCommand &choose)
{
    addChange(
        group, "reject", "Turn an application down", "", options, choose,
        [](EmployeeDecisions &decisions, const EmployeeOptions &o) {
            return decisions.reject(o.approval.email);
        });
    addChange(
        group, "suspend", "Lock an employee out, at once on all devices", "", options, choose,
        [](EmployeeDecisions &decisions, const EmployeeOptions &o) {
            return decisions.suspend(o.approval.email);
        });
    CLI::App *assign =
        addChange(group, "assign-office", "Give an employee another office", " \"Head Office\"", options,
                  choose, [](EmployeeDecisions &decisions, const EmployeeOptions &o) {
                      return decisions.assignOffice(o.approval.email, o.office);
                  });
    assign->add_option("OFFICE", options->office, "The office's name or identifier")->required();
}

void addLastDay(CLI::App &group, const SharedEmployeeOptions &options, const ChooseCommand &choose)
{
    CLI::App *set =
        addChange(group, "set-last-day", "Set or change the last day of an employment", " 2026-12-31",
                  options, choose, [](EmployeeDecisions &decisions, const EmployeeOptions &o) {
                      return decisions.setLastDay(o.approval.email, o.lastDay.value());
                  });
    addField(*set, "DATE", "The last date on which the person is employed", options->lastDay, parseDay,
             dayRule)
        ->required();
    addChange(group, "clear-last-day", "Take the last day of an employment back", "", options, choose,
              [](EmployeeDecisions &decisions, const EmployeeOptions &o) {
                  return decisions.clearLastDay(o.approval.email);
              });
}

} // namespace

void addEmployeeCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                         const ChooseCommand &choose)
{
    CLI::App *group = addGroup(admin, "employees", "List, approve, reject and suspend employees",
                               " approve kim@example.org");
    const auto own = std::make_shared<EmployeeOptions>();
    own->common = options;
    addQueries(*group, own, choose);
    addApprove(*group, own, choose);
    addOtherChanges(*group, own, choose);
    addLastDay(*group, own, choose);
}

} // namespace clockwell::server
