#include "Company.h"

#include "server/attendance/TimeZone.h"
#include "server/auth/Accounts.h"
#include "server/auth/Passwords.h"
#include "server/auth/Tokens.h"

namespace clockwell::rush {

using namespace server;

namespace {

constexpr std::chrono::minutes sessionAge{20}; // older than an access token gets

/// A zone where it is about noon, so that no run sees two days.
std::string zoneAtNoon()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto hour = std::chrono::duration_cast<std::chrono::hours>(now).count() % 24;
    const auto east = 12 - hour; // hours ahead of UTC; in these names the sign is turned
    if (east == 0)
        return "Etc/GMT";
    return east > 0 ? "Etc/GMT-" + std::to_string(east) : "Etc/GMT+" + std::to_string(-east);
}

std::string addOffice(server::Connection &connection, const std::string &run)
{
    const std::string company = newId();
    const std::string office = newId();
    connection.execute("INSERT INTO companies (id, name, code) VALUES (:id, 'Rush', :code)", company, run);
    connection.execute("INSERT INTO offices (id, company_id, name, latitude, longitude, radius_meters,"
                       " max_accuracy_meters, time_zone, check_in_minute, check_out_minute, grace_minutes,"
                       " full_day_minutes, working_weekdays)"
                       " VALUES (:id, :company, 'Head Office', 54.1234, 9.5678, 150, 100, :zone, 570, 1080,"
                       " 10, 300, 127)",
                       office, company, zoneAtNoon());
    return office;
}

std::vector<Person> addPeople(server::Connection &connection, const std::string &run, unsigned count,
                              const std::string &hash)
{
    const std::string office = addOffice(connection, run);
    std::vector<Person> people;
    people.reserve(count);
    for (unsigned i = 0; i < count; ++i) {
        Person person{
            .id = newId(), .email = run + '-' + std::to_string(i) + "@example.org", .device = newId()};
        connection.execute("INSERT INTO employees (id, company_id, office_id, full_name, email, email_key,"
                           " password_hash, role, status, email_verified, joined_on, created_at)"
                           " SELECT :id, company_id, id, 'Robin Rush', :email, :key, :hash, 'EMPLOYEE',"
                           " 'APPROVED', 1, '2020-01-01', 0 FROM offices WHERE id = :office",
                           person.id, person.email, emailKey(person.email), hash, office);
        people.push_back(std::move(person));
    }
    return people;
}

} // namespace

std::vector<Person> addCompany(Database &database, unsigned withSession, unsigned without,
                               unsigned oneFreshIn)
{
    const std::string run = "rush-" + newId().substr(0, 8);
    const std::string hash = Passwords{}.hash(rushPassword);
    auto people = database.write([&](server::Connection &connection) {
        return addPeople(connection, run, withSession + without, hash);
    });
    Sessions fresh{database, systemClock()};
    Sessions old{database, [] { return systemClock()() - sessionAge; }};
    for (unsigned i = 0; i < withSession; ++i) {
        Person &person = people.at(i);
        const auto employee = database.read(
            [&](server::Connection &connection) { return findEmployeeById(connection, person.id).value(); });
        person.tokens = (i % oneFreshIn == 0 ? fresh : old).start(employee, person.device);
    }
    return people;
}

} // namespace clockwell::rush
