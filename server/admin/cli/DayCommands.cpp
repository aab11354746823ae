#include "server/admin/AdminDatabase.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/cli/CommandParts.h"
#include "server/admin/cli/Commands.h"
#include "server/admin/cli/DayPrinter.h"

namespace clockwell::server {

namespace {

struct DayOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string email;
    std::optional<Day> day;
    std::optional<ClockTime> checkIn;
    std::optional<ClockTime> checkOut;
    std::optional<std::string> reason;
};
using SharedDayOptions = std::shared_ptr<DayOptions>;

void show(const DayOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto record = database.database().read([&](Connection &connection) {
        const EmployeeDay day = requireEmployeeDay(connection, options.email, *options.day);
        return readDayRecord(connection, day, systemClock()());
    });
    printDayRecord(record, options.common->json);
}

using DayAction = std::function<ChangedDay(Connection &, const Audit &, const EmployeeDay &, Instant now)>;

void change(const DayOptions &options, const DayAction &what)
{
    AdminDatabase database{options.common->database};
    const auto [outcome, record] = database.write([&](Connection &connection) {
        const Audit audit{connection, options.common->as};
        const EmployeeDay day = requireEmployeeDay(connection, options.email, *options.day);
        const Instant now = systemClock()();
        const ChangedDay done = what(connection, audit, day, now);
        return std::pair{done.outcome, readDayRecord(connection, done.after, now)};
    });
    printOutcome(outcome, "day", dayRecordJson(record), options.common->json);
}

CLI::App *addDayCommand(CLI::App &group, const std::string &name, const std::string &help,
                        const std::string &example, const SharedDayOptions &options)
{
    CLI::App *command = addCommand(group, name, help, " kim@example.org 2026-12-21" + example);
    command->add_option("EMAIL", options->email, "The employee's e-mail address")->required();
    addField(*command, "DATE", "The day, yyyy-MM-dd", options->day, parseDay, dayRule)
        ->required()
        ->type_name("DAY");
    return command;
}

void addReason(CLI::App &command, const SharedDayOptions &options)
{
    addField(
        command, "--reason", "Why, for the audit", options->reason,
        [](const std::string &text) { return parseLine(text); }, lineRule)
        ->required();
}

void requireNamed(const DayOptions &options)
{
    if (!options.common->as)
        throw CLI::RequiredError("--as");
}

void addCorrect(CLI::App &group, const SharedDayOptions &options, const ChooseCommand &choose)
{
    CLI::App *command =
        addDayCommand(group, "correct", "Let a day count with other times; what is not given stays as it is",
                      " --check-out 18:00 --reason Forgotten --as ada@example.org", options);
    addField(*command, "--check-in", "Time on the office's clock, HH:MM", options->checkIn, parseClockTime,
             clockTimeRule)
        ->type_name("HH:MM");
    addField(*command, "--check-out", "Time on the office's clock, HH:MM", options->checkOut, parseClockTime,
             clockTimeRule)
        ->type_name("HH:MM");
    addReason(*command, options);
    command->callback([=] {
        requireNamed(*options);
        if (!options->checkIn && !options->checkOut)
            throw CLI::ValidationError("correct", "pass --check-in, --check-out or both");
        choose([=] {
            change(*options,
                   [&](Connection &connection, const Audit &audit, const EmployeeDay &day, Instant now) {
                       return correctDay(connection, audit, day,
                                         {options->checkIn, options->checkOut, *options->reason}, now);
                   });
        });
    });
}

void addVoid(CLI::App &group, const SharedDayOptions &options, const ChooseCommand &choose)
{
    CLI::App *command = addDayCommand(group, "void", "Let a day count as one without punches",
                                      " --reason \"Wrong phone\" --as ada@example.org", options);
    addReason(*command, options);
    command->callback([=] {
        requireNamed(*options);
        choose([=] {
            change(*options, [&](Connection &connection, const Audit &audit, const EmployeeDay &day,
                                 Instant) { return voidDay(connection, audit, day, *options->reason); });
        });
    });
}

} // namespace

void addDayCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                    const ChooseCommand &choose)
{
    CLI::App *group = addGroup(admin, "days", "Show employees' days and put them right",
                               " show kim@example.org 2026-12-21");
    const auto own = std::make_shared<DayOptions>();
    own->common = options;
    CLI::App *one =
        addDayCommand(*group, "show", "Show a day: what counts, the punches, the corrections", "", own);
    one->callback([=] { choose([=] { show(*own); }); });
    addCorrect(*group, own, choose);
    addVoid(*group, own, choose);
}

} // namespace clockwell::server
