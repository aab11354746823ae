#include "server/admin/OfficeGroup.h"

#include "server/admin/AdminDatabase.h"
#include "server/admin/Audit.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/OfficeChanges.h"
#include "server/admin/OfficeFields.h"

#include <cstdio>

namespace clockwell::server {

namespace {

struct OfficeOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string office; ///< the one that a command is about
    std::optional<std::string> company;
    OfficeWishes wishes;
};
using SharedOfficeOptions = std::shared_ptr<OfficeOptions>;

Json officeRecordJson(const OfficeRecord &record)
{
    const Office &office = record.office;
    const OfficeHours &hours = office.hours;
    Json days = Json::array();
    for (std::size_t day = 0; day < weekdayNames.size(); ++day)
        if (((hours.workingWeekdays >> day) & 1) != 0)
            days.push_back(weekdayNames.at(day));
    Json json;
    json["id"] = office.id;
    json["name"] = office.name;
    json["company"] = record.companyName;
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

void list(const OfficeOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto records = database.database().read(listOfficeRecords);
    Listing listing;
    listing.none = "No offices.";
    listing.header = {"NAME", "COMPANY", "HOURS", "DAYS", "TIME ZONE", "RADIUS"};
    listing.rows.reserve(records.size());
    for (const OfficeRecord &record : records) {
        const Office &office = record.office;
        listing.rows.push_back(
            {office.name, record.companyName,
             timeOfDayText(office.hours.checkInMinute) + "-" + timeOfDayText(office.hours.checkOutMinute),
             weekdaysText(office.hours.workingWeekdays), office.timeZoneName,
             std::to_string(office.radiusMeters) + " m"});
        listing.objects.push_back(officeRecordJson(record));
    }
    printListing(listing, options.common->json);
}

void show(const OfficeOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto record = database.database().read(
        [&](Connection &connection) { return requireOfficeRecord(connection, options.office); });
    if (options.common->json)
        return printJson(officeRecordJson(record));
    std::vector<std::vector<std::string>> lines{{"Identifier", record.office.id}};
    for (const auto &[label, text] : officeFacts(record))
        lines.push_back({label, text});
    const std::vector<std::string> first = lines.at(1); // the name stands above all
    lines.erase(lines.begin() + 1);
    std::fputs(tableText(first, lines).c_str(), stdout);
}

using OfficeAction = std::function<OfficeChange(Connection &)>;

void change(const OfficeOptions &options, const std::string &command, const OfficeAction &what)
{
    AdminDatabase database{options.common->database};
    const auto done = database.write([&](Connection &connection) {
        const Audit audit{connection, options.common->as};
        OfficeChange outcome = what(connection);
        if (outcome.outcome.changed)
            audit.add({command, outcome.record.office.name, outcome.record.office.id, std::nullopt,
                       outcome.before ? officeRecordJson(*outcome.before) : Json(nullptr),
                       officeRecordJson(outcome.record)});
        return outcome;
    });
    printOutcome(done.outcome, "office", officeRecordJson(done.record), options.common->json);
}

void add(const OfficeOptions &options)
{
    change(
        options, "offices add",
        [&](Connection &connection) { return addOffice(connection, options.company, options.wishes); });
}

void edit(const OfficeOptions &options)
{
    change(
        options, "offices edit",
        [&](Connection &connection) { return editOffice(connection, options.office, options.wishes); });
}

void addAdd(CLI::App &group, const SharedOfficeOptions &options, const ChooseCommand &choose)
{
    CLI::App *one = addCommand(group, "add", "Add an office",
                               " Harbour --latitude 54.1 --longitude 9.6 --time-zone Europe/Berlin"
                               " --check-in 09:00 --check-out 17:30");
    addOfficeName(*one, "NAME", "The office's name", options->wishes)->required();
    one->add_option("--company", options->company, "The company's code [the only company]")
        ->type_name("CODE");
    addOfficeFields(*one, options->wishes, true);
    one->callback([=] { choose([=] { add(*options); }); });
}

void addEdit(CLI::App &group, const SharedOfficeOptions &options, const ChooseCommand &choose)
{
    CLI::App *one = addCommand(group, "edit", "Change an office; what is not given stays as it is",
                               " Harbour --radius 200 --working-days Mon-Sat");
    one->add_option("OFFICE", options->office, "The office's name so far, or its identifier")->required();
    addOfficeName(*one, "--name", "Its new name", options->wishes);
    addOfficeFields(*one, options->wishes, false);
    one->callback([=] {
        if (options->wishes.empty())
            throw CLI::ValidationError("edit", "pass what to change, like --radius 200");
        choose([=] { edit(*options); });
    });
}

} // namespace

void addOfficeGroup(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                    const ChooseCommand &choose)
{
    CLI::App *group = addGroup(admin, "offices", "List, add and change offices", " list");
    const auto own = std::make_shared<OfficeOptions>();
    own->common = options;
    addCommand(*group, "list", "List offices", "")->callback([=] { choose([=] { list(*own); }); });
    CLI::App *one = addCommand(*group, "show", "Show one office", " \"Head Office\"");
    one->add_option("OFFICE", own->office, "The office's name or identifier")->required();
    one->callback([=] { choose([=] { show(*own); }); });
    addAdd(*group, own, choose);
    addEdit(*group, own, choose);
}

} // namespace clockwell::server
