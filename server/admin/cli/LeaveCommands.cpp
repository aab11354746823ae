#include "server/admin/AdminDatabase.h"
#include "server/admin/Audit.h"
#include "server/admin/Employees.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/Leaves.h"
#include "server/admin/cli/CommandParts.h"
#include "server/admin/cli/Commands.h"

namespace clockwell::server {

namespace {

struct LeaveOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string email; ///< empty in `list`: all; in `remove` also an identifier
    std::optional<Month> month;
    std::optional<Day> firstDay;
    std::optional<Day> lastDay;
    std::optional<std::string> reason;
};
using SharedLeaveOptions = std::shared_ptr<LeaveOptions>;

Json leaveJson(const EmployeeLeave &of)
{
    const auto &[leave, employee] = of;
    Json json;
    json["id"] = leave.id;
    json["email"] = employee.email;
    json["fullName"] = employee.fullName;
    json["from"] = leave.firstDay;
    json["to"] = leave.lastDay;
    json["reason"] = optionalJson(leave.reason);
    return json;
}

bool touches(const Leave &leave, Month month)
{
    return leave.firstDay <= toText(lastDayOf(month)) && leave.lastDay >= toText(firstDayOf(month));
}

std::vector<EmployeeLeave> matchingLeave(Connection &connection, const LeaveOptions &options)
{
    auto leaves = listLeave(connection);
    const std::string id =
        options.email.empty() ? "" : requireEmployee(connection, options.email).employee.id;
    std::erase_if(leaves, [&](const EmployeeLeave &of) {
        return (!id.empty() && of.employee.id != id) || (options.month && !touches(of.leave, *options.month));
    });
    return leaves;
}

void list(const LeaveOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto leaves =
        database.database().read([&](Connection &connection) { return matchingLeave(connection, options); });
    Listing listing;
    listing.none = "No leave.";
    listing.header = {"FROM", "TO", "NAME", "E-MAIL", "REASON", "IDENTIFIER"};
    listing.rows.reserve(leaves.size());
    for (const EmployeeLeave &of : leaves) {
        const auto &[leave, employee] = of;
        listing.rows.push_back({leave.firstDay, leave.lastDay, employee.fullName, employee.email,
                                leave.reason.value_or("-"), leave.id});
        listing.objects.push_back(leaveJson(of));
    }
    printListing(listing, options.common->json);
}

using LeaveAction = std::function<ChangedLeave(Connection &)>;

void change(const LeaveOptions &options, const std::string &name, const LeaveAction &what)
{
    AdminDatabase database{options.common->database};
    const ChangedLeave done = database.write([&](Connection &connection) {
        const Audit audit{connection, options.common->as};
        ChangedLeave changed = what(connection);
        const auto &[leave, employee] = changed.leave;
        const Json json = leaveJson(changed.leave);
        const bool added = name == "add";
        if (changed.outcome.changed)
            audit.add({"leave " + name, employee.email, leave.id, leave.firstDay,
                       added ? Json(nullptr) : json, added ? json : Json(nullptr)});
        return changed;
    });
    printOutcome(done.outcome, "leave", leaveJson(done.leave), options.common->json);
}

void add(const LeaveOptions &options)
{
    const LeaveGrant grant{options.email, *options.firstDay, *options.lastDay, options.reason};
    change(options, "add", [&](Connection &connection) { return grantLeave(connection, grant); });
}

void remove(const LeaveOptions &options)
{
    change(
        options, "remove",
        [&](Connection &connection) {
            return options.firstDay ? withdrawLeave(connection, options.email, *options.firstDay)
                                    : withdrawLeave(connection, options.email);
        });
}

void addList(CLI::App &group, const SharedLeaveOptions &options, const ChooseCommand &choose)
{
    CLI::App *all = addCommand(group, "list", "List leave", " --month 2026-12");
    all->add_option("--employee", options->email, "Only that of the employee with this e-mail address");
    addField(*all, "--month", "Only what touches this month, yyyy-MM", options->month, parseMonth,
             "it has to be a month like 2026-12")
        ->type_name("MONTH");
    all->callback([=] { choose([=] { list(*options); }); });
}

void addAdd(CLI::App &group, const SharedLeaveOptions &options, const ChooseCommand &choose)
{
    CLI::App *one =
        addCommand(group, "add", "Give an employee leave", " kim@example.org 2026-12-21 2027-01-02");
    one->add_option("EMAIL", options->email, "The employee's e-mail address")->required();
    addField(*one, "FROM", "The first day, yyyy-MM-dd", options->firstDay, parseDay, dayRule)
        ->required()
        ->type_name("DAY");
    addField(*one, "TO", "The last day, included", options->lastDay, parseDay, dayRule)
        ->required()
        ->type_name("DAY");
    addField(
        *one, "--reason", "For the administrators' lists", options->reason,
        [](const std::string &text) { return parseLine(text); }, lineRule);
    one->callback([=] { choose([=] { add(*options); }); });
}

void addRemove(CLI::App &group, const SharedLeaveOptions &options, const ChooseCommand &choose)
{
    CLI::App *one = addCommand(group, "remove", "Take leave back: by its identifier, or by whose it is",
                               " kim@example.org 2026-12-21");
    one->add_option("LEAVE", options->email, "The leave's identifier, or the employee's e-mail address")
        ->required();
    addField(*one, "FROM", "With an e-mail address: the leave's first day", options->firstDay, parseDay,
             dayRule)
        ->type_name("DAY");
    one->callback([=] {
        if (!options->firstDay && options->email.find('@') != std::string::npos)
            throw CLI::ValidationError("FROM", "pass also the first day of the leave");
        choose([=] { remove(*options); });
    });
}

} // namespace

void addLeaveCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose)
{
    CLI::App *group =
        addGroup(admin, "leave", "List, add and remove employees' leave", " list --month 2026-12");
    const auto own = std::make_shared<LeaveOptions>();
    own->common = options;
    addList(*group, own, choose);
    addAdd(*group, own, choose);
    addRemove(*group, own, choose);
}

} // namespace clockwell::server
