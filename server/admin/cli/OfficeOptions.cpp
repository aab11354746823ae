#include "server/admin/cli/OfficeOptions.h"

#include "server/admin/FieldTexts.h"
#include "server/attendance/TimeZone.h"

namespace clockwell::server {

namespace {

constexpr long long largestDistance = 100'000; // metres; more is a slip of the keys
constexpr long long longestZone = 64;          // as in the schema
constexpr long long minutesOfDay = 24 * 60;

std::optional<std::string> parseZone(const std::string &text)
{
    const bool known = text.size() <= longestZone && TimeZone::named(text);
    return known ? std::optional{text} : std::nullopt;
}

void addWhole(CLI::App &command, const std::string &name, const std::string &unit, const std::string &help,
              std::optional<long long> &target, long long smallest, long long largest)
{
    addField(
        command, name, help, target,
        [=](const std::string &text) { return parseWhole(text, smallest, largest); },
        "it has to be a whole number from " + std::to_string(smallest) + " to " + std::to_string(largest))
        ->type_name(unit);
}

void addPlace(CLI::App &command, OfficeChanges &changes, bool required)
{
    addField(
        command, "--latitude", "Degrees north, e.g. 52.5163", changes.latitude,
        [](const std::string &text) { return parseWithin(text, -90, 90); },
        "it has to be a number of degrees from -90 to 90")
        ->required(required)
        ->type_name("DEGREES");
    addField(
        command, "--longitude", "Degrees east, e.g. 13.3777", changes.longitude,
        [](const std::string &text) { return parseWithin(text, -180, 180); },
        "it has to be a number of degrees from -180 to 180")
        ->required(required)
        ->type_name("DEGREES");
    addField(command, "--time-zone", "IANA name, e.g. Europe/Berlin", changes.timeZoneName, parseZone,
             "it has to be the name of a time zone, like Europe/Berlin")
        ->required(required)
        ->type_name("ZONE");
}

void addTime(CLI::App &command, const std::string &name, const std::string &help,
             std::optional<long long> &target, long long earliest, long long latest)
{
    const auto parse = [=](const std::string &text) {
        const auto minute = parseTimeOfDay(text);
        return minute && *minute >= earliest && *minute <= latest ? minute : std::nullopt;
    };
    addField(command, name, help, target, parse,
             "it has to be a time from " + timeOfDayText(earliest) + " to " + timeOfDayText(latest))
        ->type_name("HH:MM");
}

void addRules(CLI::App &command, OfficeChanges &changes, bool defaults)
{
    const auto help = [defaults](const std::string &text, const std::string &value) {
        return defaults ? text + " [" + value + "]" : text;
    };
    addWhole(command, "--radius", "METRES", help("Metres around the place that count as there", "150"),
             changes.radiusMeters, 1, largestDistance);
    addWhole(command, "--max-accuracy", "METRES",
             help("A position less precise than these metres is refused", "100"), changes.maxAccuracyMeters,
             1, largestDistance);
    addWhole(command, "--grace", "MINUTES", help("Minutes after check-in time that are not late yet", "10"),
             changes.graceMinutes, 0, minutesOfDay);
    addWhole(command, "--full-day", "MINUTES", help("Minutes of work below which it is a half day", "300"),
             changes.fullDayMinutes, 0, minutesOfDay);
    addField(command, "--working-days", help("Mon-Fri or Mon,Wed,Sat and the like", "Mon-Fri"),
             changes.workingWeekdays, parseWeekdays, "it has to name days, like Mon-Fri or Mon,Wed,Sat")
        ->type_name("DAYS");
}

} // namespace

CLI::Option *addOfficeName(CLI::App &command, const std::string &name, const std::string &help,
                           OfficeChanges &changes)
{
    return addField(
        command, name, help, changes.name, [](const std::string &text) { return parseLine(text); }, lineRule);
}

void addOfficeOptions(CLI::App &command, OfficeChanges &changes, bool forNewOffice)
{
    addPlace(command, changes, forNewOffice);
    addTime(command, "--check-in", "Time of day HH:MM by which people are there", changes.checkInMinute, 0,
            minutesOfDay - 1);
    addTime(command, "--check-out", "Time of day HH:MM at which they leave", changes.checkOutMinute, 1,
            minutesOfDay);
    for (const char *name : {"--check-in", "--check-out"})
        command.get_option(name)->required(forNewOffice);
    addRules(command, changes, forNewOffice);
}

} // namespace clockwell::server
