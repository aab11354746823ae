#include "server/admin/AdminDatabase.h"
#include "server/admin/Audit.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/Holidays.h"
#include "server/admin/cli/CommandParts.h"
#include "server/admin/cli/Commands.h"

#include <functional>

namespace clockwell::server {

namespace {

struct HolidayOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string office; ///< name; empty in `list`: all
    std::optional<long long> year;
    std::optional<Day> day;
    std::optional<std::string> name;
};
using SharedHolidayOptions = std::shared_ptr<HolidayOptions>;

std::string weekdayOf(const std::string &day)
{
    const auto date = parseDay(day);
    return date ? weekdayNames.at(weekdayIndex(*date)) : "-";
}

Json holidayJson(const OfficeHoliday &of)
{
    const auto &[holiday, office, company] = of;
    Json json;
    json["date"] = holiday.day;
    json["name"] = holiday.name;
    json["office"] = office.name;
    json["company"] = company.name;
    return json;
}

std::vector<OfficeHoliday> matchingHolidays(Connection &connection, const HolidayOptions &options)
{
    auto holidays = listHolidays(connection);
    const std::string office =
        options.office.empty() ? "" : requireOfficeNamed(connection, options.office).office.id;
    std::erase_if(holidays, [&](const OfficeHoliday &of) {
        return (!office.empty() && of.office.id != office) ||
               (options.year && parseWhole(of.holiday.day.substr(0, 4), 0, 9999) != options.year);
    });
    return holidays;
}

void list(const HolidayOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto holidays = database.database().read(
        [&](Connection &connection) { return matchingHolidays(connection, options); });
    Listing listing;
    listing.none = "No holidays.";
    listing.header = {"DATE", "DAY", "OFFICE", "NAME"};
    listing.rows.reserve(holidays.size());
    for (const OfficeHoliday &of : holidays) {
        const auto &[holiday, office, company] = of;
        listing.rows.push_back({holiday.day, weekdayOf(holiday.day), office.name, holiday.name});
        listing.objects.push_back(holidayJson(of));
    }
    printListing(listing, options.common->json);
}

using HolidayAction = std::function<ChangedHoliday(Connection &, const HolidayOptions &)>;

void change(const HolidayOptions &options, const std::string &name, const HolidayAction &what)
{
    AdminDatabase database{options.common->database};
    const ChangedHoliday done = database.write([&](Connection &connection) {
        const Audit audit{connection, options.common->as};
        ChangedHoliday changed = what(connection, options);
        const auto &[holiday, office, company] = changed.holiday;
        const Json json = holidayJson(changed.holiday);
        const bool added = name == "add";
        if (changed.outcome.changed)
            audit.add({"holidays " + name, office.name, office.id, holiday.day, added ? Json(nullptr) : json,
                       added ? json : Json(nullptr)});
        return changed;
    });
    printOutcome(done.outcome, "holiday", holidayJson(done.holiday), options.common->json);
}

CLI::App *addChange(CLI::App &group, const std::string &name, const std::string &help,
                    const std::string &example, const SharedHolidayOptions &options,
                    const ChooseCommand &choose, const HolidayAction &what)
{
    CLI::App *command = addCommand(group, name, help, " \"Head Office\" 2027-01-01" + example);
    command->add_option("OFFICE", options->office, "The office's name or identifier")->required();
    addField(*command, "DATE", "The day, yyyy-MM-dd", options->day, parseDay, dayRule)
        ->required()
        ->type_name("DAY");
    command->callback([=] { choose([=] { change(*options, name, what); }); });
    return command;
}

void addList(CLI::App &group, const SharedHolidayOptions &options, const ChooseCommand &choose)
{
    CLI::App *all = addCommand(group, "list", "List holidays", " --year 2027");
    all->add_option("--office", options->office, "Only those of the office with this name or identifier");
    addField(
        *all, "--year", "Only those of this year", options->year,
        [](const std::string &text) { return parseWhole(text, 1, 9999); }, "it has to be a year like 2027")
        ->type_name("YYYY");
    all->callback([=] { choose([=] { list(*options); }); });
}

} // namespace

void addHolidayCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                        const ChooseCommand &choose)
{
    CLI::App *group = addGroup(
        admin, "holidays", "List, add and remove the days on which an office is closed", " list --year 2027");
    const auto own = std::make_shared<HolidayOptions>();
    own->common = options;
    addList(*group, own, choose);
    CLI::App *add = addChange(
        *group, "add", "Close an office on a day", " \"New Year\"", own, choose,
        [](Connection &connection, const HolidayOptions &o) {
            return declareHoliday(connection, o.office, *o.day, *o.name);
        });
    addField(
        *add, "NAME", "What people read on that day", own->name,
        [](const std::string &text) { return parseLine(text); }, lineRule)
        ->required();
    addChange(*group, "remove", "Open an office again on a day", "", own, choose,
              [](Connection &connection, const HolidayOptions &o) {
                  return withdrawHoliday(connection, o.office, *o.day);
              });
}

} // namespace clockwell::server
