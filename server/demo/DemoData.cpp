#include "server/demo/DemoData.h"

#include "server/admin/Audit.h"
#include "server/auth/Accounts.h"
#include "server/auth/Tokens.h"
#include "server/demo/DemoHistory.h"
#include "server/storage/RowType.h"

#include <array>

namespace clockwell::server {

namespace {

struct DemoPerson
{
    const char *fullName;
    const char *email;
    const char *phone;
    const char *role;
};

constexpr DemoPerson demoEmployee{"Mira Solberg", demoEmail, "+00 555 0100", "EMPLOYEE"};
constexpr std::array demoManagers{
    DemoPerson{"Jonas Weld", "manager@clockwell.example", "+00 555 0101", "MANAGER"},
    DemoPerson{"Ada Lindqvist", "admin@clockwell.example", "+00 555 0102", "ADMIN"},
};

// A place in open fields: nobody's address.
constexpr double demoLatitude = 54.1234;
constexpr double demoLongitude = 9.5678;
constexpr long long demoRadius = 150;
constexpr long long everyWeekday = 127; // so that the demonstration works on any day

struct DemoIds
{
    std::string company = newId();
    std::string office = newId();
};

void insertOrganisation(Connection &connection, const DemoIds &ids, const TimeZone &zone)
{
    connection.execute("INSERT INTO companies (id, name, code) VALUES (:id, :name, :code)", ids.company,
                       "Wellbrook Works", "WELLBROOK");
    connection.execute(
        "INSERT INTO offices (id, company_id, name, latitude, longitude, radius_meters, "
        "max_accuracy_meters,"
        " time_zone, check_in_minute, check_out_minute, grace_minutes, full_day_minutes, working_weekdays)"
        " VALUES (:id, :company, :name, :lat, :lng, :radius, :accuracy, :zone, :in, :out, :grace, :full, "
        ":days)",
        ids.office, ids.company, "Head Office", demoLatitude, demoLongitude, demoRadius, 100, zone.name(),
        9 * 60 + 30, 18 * 60, 10, 5 * 60, everyWeekday);
}

Employee insertPerson(Connection &connection, const DemoIds &ids, const DemoPerson &person,
                      const std::string &hash, Day joinedOn, Instant now)
{
    const std::string id = newId();
    connection.execute("INSERT INTO employees (id, company_id, office_id, full_name, email, email_key, "
                       "phone, password_hash,"
                       " role, status, email_verified, joined_on, created_at) VALUES (:id, :company, "
                       ":office, :name, :email,"
                       " :key, :phone, :hash, :role, 'APPROVED', 1, :joined, :now)",
                       id, ids.company, ids.office, person.fullName, person.email, emailKey(person.email),
                       person.phone, hash, person.role, toText(joinedOn), toMillis(now));
    return findEmployeeById(connection, id).value();
}

} // namespace

bool fillWithDemoData(Database &database, Passwords &passwords, const Clock &clock, const TimeZone &zone,
                      const std::string &password)
{
    std::array<std::string, 1 + demoManagers.size()> hashes;
    for (std::string &hash : hashes)
        hash = passwords.hash(password);
    return database.write([&](Connection &connection) {
        if (connection.value<long long>("SELECT COUNT(*) FROM employees") > 0)
            return false;
        const Instant now = clock();
        const Day today = zone.dayOf(now);
        const Day joinedOn = today - demoHistoryLength;
        const DemoIds ids;
        insertOrganisation(connection, ids, zone);
        for (std::size_t i = 0; i < demoManagers.size(); ++i)
            insertPerson(connection, ids, demoManagers.at(i), hashes.at(i + 1), joinedOn, now);
        const Employee employee = insertPerson(connection, ids, demoEmployee, hashes.front(), joinedOn, now);
        insertDemoHistory(connection, database, employee, today);
        return true;
    });
}

void deleteAllData(Database &database)
{
    database.write([](Connection &connection) {
        const auto count = [&](const std::string &table) {
            return connection.value<long long>("SELECT COUNT(*) FROM " + table);
        };
        Json before;
        before["employees"] = count("employees");
        before["attendanceDays"] = count("attendance");
        Audit{connection, std::nullopt}.add(
            {"demo --fresh", "everything", "", std::nullopt, before, nullptr});
        for (const char *table :
             {"codes", "wrong_codes", "spendings", "counted_events", "entered_codes", "access_tokens",
              "refresh_tokens", "token_families", "punches", "attendance", "leaves", "sign_ups", "employees",
              "holidays", "offices", "companies"})
            connection.execute(std::string{"DELETE FROM "} + table);
    });
}

std::optional<DemoFacts> findDemoFacts(Database &database)
{
    return database.read([](Connection &connection) {
        static const std::string sql =
            "SELECT " + columnsOf<Employee>("e") + ", " + columnsOf<Office>("o") +
            " FROM employees e JOIN offices o ON o.id = e.office_id WHERE e.email_key = :key";
        return connection.first<DemoFacts>(sql, demoEmail);
    });
}

} // namespace clockwell::server
