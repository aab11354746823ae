#include "server/admin/AdminDatabase.h"
#include "server/admin/Audit.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/Offices.h"
#include "server/admin/cli/Commands.h"
#include "server/admin/cli/OfficeOptions.h"
#include "server/admin/cli/Table.h"

#include <cstdio>

namespace clockwell::server {

namespace {

struct OfficeCommandOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string office; ///< the one that a command is about
    std::optional<std::string> company;
    OfficeChanges changes;
};
using SharedOfficeOptions = std::shared_ptr<OfficeCommandOptions>;

Json companyOfficeJson(const CompanyOffice &of)
{
    const auto &[office, company] = of;
    const OfficeHours &hours = office.hours;
    Json days = Json::array();
    for (std::size_t day = 0; day < weekdayNames.size(); ++day)
        if (((hours.workingWeekdays >> day) & 1) != 0)
            days.push_back(weekdayNames.at(day));
    Json json;
    json["id"] = office.id;
    json["name"] = office.name;
    json["company"] = company.name;
    json["latitude"] = office.latitude;
    json["longitude"] = office.longitude;
    json["radiusMeters"] = office.radiusMeters;
    json["maxAccuracyMeters"] = office.maxAccuracyMeters;
    json["timeZone"] = office.timeZoneName;
    json["checkIn"] = timeOfDayText(hours.checkInMinute);
    json["checkOut"] = timeOfDayText(hours.checkOutMinute);
    json["graceMinutes"] = hours.graceMinutes;
    json["fullDayMinutes"] = hours.fullDayMinutes;
    json["workingDays"] = days;
    return json;
}

void list(const OfficeCommandOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto offices = database.database().read(listOffices);
    Listing listing;
    listing.none = "No offices.";
    listing.header = {"NAME", "COMPANY", "HOURS", "DAYS", "TIME ZONE", "RADIUS"};
    listing.rows.reserve(offices.size());
    for (const CompanyOffice &one : offices) {
        const auto &[office, company] = one;
        listing.rows.push_back(
            {office.name, company.name,
             timeOfDayText(office.hours.checkInMinute) + "-" + timeOfDayText(office.hours.checkOutMinute),
             weekdaysText(office.hours.workingWeekdays), office.timeZoneName,
             std::to_string(office.radiusMeters) + " m"});
        listing.objects.push_back(companyOfficeJson(one));
    }
    printListing(listing, options.common->json);
}

void show(const OfficeCommandOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto found = database.database().read(
        [&](Connection &connection) { return requireOfficeNamed(connection, options.office); });
    if (options.common->json)
        return printJson(companyOfficeJson(found));
    std::vector<std::vector<std::string>> lines{{"Identifier", found.office.id}};
    for (const auto &[label, text] : officeFacts(found))
        lines.push_back({label, text});
    const std::vector<std::string> first = lines.at(1); // the name stands above all
    lines.erase(lines.begin() + 1);
    std::fputs(tableText(first, lines).c_str(), stdout);
}

using OfficeAction = std::function<ChangedOffice(Connection &)>;

void change(const OfficeCommandOptions &options, const std::string &command, const OfficeAction &what)
{
    AdminDatabase database{options.common->database};
    const auto done = database.write([&](Connection &connection) {
        const Audit audit{connection, options.common->as};
        ChangedOffice office = what(connection);
        if (office.outcome.changed)
            audit.add({command, office.after.office.name, office.after.office.id, std::nullopt,
                       office.before ? companyOfficeJson(*office.before) : Json(nullptr),
                       companyOfficeJson(office.after)});
        return office;
    });
    printOutcome(done.outcome, "office", companyOfficeJson(done.after), options.common->json);
}

void add(const OfficeCommandOptions &options)
{
    change(
        options, "offices add",
        [&](Connection &connection) { return addOffice(connection, options.company, options.changes); });
}

void edit(const OfficeCommandOptions &options)
{
    change(
        options, "offices edit",
        [&](Connection &connection) { return editOffice(connection, options.office, options.changes); });
}

void addAdd(CLI::App &group, const SharedOfficeOptions &options, const ChooseCommand &choose)
{
    CLI::App *one = addCommand(group, "add", "Add an office",
                               " Harbour --latitude 54.1 --longitude 9.6 --time-zone Europe/Berlin"
                               " --check-in 09:00 --check-out 17:30");
    addOfficeName(*one, "NAME", "The office's name", options->changes)->required();
    one->add_option("--company", options->company, "The company's code [the only company]")
        ->type_name("CODE");
    addOfficeOptions(*one, options->changes, true);
    one->callback([=] { choose([=] { add(*options); }); });
}

void addEdit(CLI::App &group, const SharedOfficeOptions &options, const ChooseCommand &choose)
{
    CLI::App *one = addCommand(group, "edit", "Change an office; what is not given stays as it is",
                               " Harbour --radius 200 --working-days Mon-Sat");
    one->add_option("OFFICE", options->office, "The office's name so far, or its identifier")->required();
    addOfficeName(*one, "--name", "Its new name", options->changes);
    addOfficeOptions(*one, options->changes, false);
    one->callback([=] {
        if (options->changes.empty())
            throw CLI::ValidationError("edit", "pass what to change, like --radius 200");
        choose([=] { edit(*options); });
    });
}

} // namespace

void addOfficeCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                       const ChooseCommand &choose)
{
    CLI::App *group = addGroup(admin, "offices", "List, add and change offices", " list");
    const auto own = std::make_shared<OfficeCommandOptions>();
    own->common = options;
    addCommand(*group, "list", "List offices", "")->callback([=] { choose([=] { list(*own); }); });
    CLI::App *one = addCommand(*group, "show", "Show one office", " \"Head Office\"");
    one->add_option("OFFICE", own->office, "The office's name or identifier")->required();
    one->callback([=] { choose([=] { show(*own); }); });
    addAdd(*group, own, choose);
    addEdit(*group, own, choose);
}

} // namespace clockwell::server
