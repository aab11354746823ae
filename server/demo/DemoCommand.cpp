#include "server/demo/DemoCommand.h"

#include "server/storage/PostgresUrl.h"

#include <cstdio>

namespace clockwell::server {

namespace {

void printFacts(const Office &office, const std::string &password)
{
    std::printf("  e-mail       %s\n"
                "  password     %s\n"
                "  office       %s (%s), open every day\n"
                "  coordinates  %.4f,%.4f\n"
                "  radius       %lld m\n",
                demoEmail, password.c_str(), office.name.c_str(), office.timeZoneName.c_str(),
                office.latitude, office.longitude, office.radiusMeters);
}

} // namespace

int runDemo(const DemoCommandOptions &options)
{
    const TimeZone zone =
        options.timeZone.empty() ? TimeZone::ofMachine() : TimeZone::named(options.timeZone).value();
    Database database{options.database};
    const std::string name = databaseLabel(options.database);
    Passwords passwords;
    if (options.fresh)
        deleteAllData(database);
    const bool filled = fillWithDemoData(database, passwords, systemClock(), zone, options.password);
    if (filled)
        std::printf("Filled %s with a demonstration.\n", name.c_str());
    else
        std::printf("%s already holds data and was left as it is (--fresh starts over).\n", name.c_str());
    if (const auto facts = findDemoFacts(database)) {
        const bool known = filled || passwords.matches(facts->employee.passwordHash, options.password);
        printFacts(facts->office, known ? options.password : "(the one given when it was filled)");
    }
    return 0;
}

} // namespace clockwell::server
