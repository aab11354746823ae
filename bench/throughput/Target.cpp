#include "Target.h"

#include "Lanes.h"
#include "Ledger.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>

namespace clockwell::bench {

using server::bench::KeptClient;

namespace {

constexpr int mostTries = 100;
constexpr std::size_t daysBefore = 20;

/// Days of long ago with both punches. In tables that are nearly empty all people would share a few pages,
/// and PostgreSQL would take those who punch at once for people who meet.
void addDaysBefore(server::Database &database, const std::string &emailPattern)
{
    const std::string days =
        " WITH RECURSIVE days (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM days WHERE n < " +
        std::to_string(daysBefore) + ") ";
    const std::string people = " FROM employees e CROSS JOIN days WHERE e.email LIKE :pattern";
    const std::string day = "substr(e.id, 1, 30) || '-' || n";
    const auto punch = [&](const std::string &kind, int ordinal) {
        const std::string number = std::to_string(ordinal);
        return "INSERT INTO punches (id, attendance_id, ordinal, type, at, device_id, latitude, longitude,"
               " accuracy, distance)" +
               days + "SELECT " + day + " || '-" + number + "', " + day + ", " + number + ", '" + kind +
               "', 1577880000000, e.id, 54.1234, 9.5678, 8, 0" + people;
    };
    database.write([&](server::Connection &connection) {
        connection.execute("INSERT INTO attendance (id, employee_id, work_date, scheduled_start_at,"
                           " scheduled_end_at, grace_minutes, full_day_minutes, check_in_at,"
                           " check_in_distance, check_out_at, check_out_distance)" +
                               days + "SELECT " + day +
                               ", e.id, '2020-01-' || (n + 9), 1577880000000, 1577910000000, 10, 300,"
                               " 1577880000000, 0, 1577910000000, 0" +
                               people,
                           emailPattern);
        connection.execute(punch("IN", 1), emailPattern);
        connection.execute(punch("OUT", 2), emailPattern);
    });
}

} // namespace

Target::Target(TargetOptions options, int lanes, int punches)
    : m_options(std::move(options)),
      m_lanes(lanes),
      m_database(std::make_unique<server::Database>(m_options.database)),
      m_people(rush::addCompany(*m_database, static_cast<unsigned>(std::max(punches, lanes)), 0, 1))
{
    const std::string &email = m_people.front().email;
    addDaysBefore(*m_database, email.substr(0, email.rfind('-')) + "-%");
}

void Target::punch(int count)
{
    std::atomic<int> next = m_next;
    m_next += count;
    onAllLanes(m_lanes, [&](int lane) {
        KeptClient client{portOf(lane)};
        for (int person = next++; person < m_next; person = next++)
            checkIn(client, person);
    });
}

void Target::checkIn(KeptClient &client, int person)
{
    const std::string &device = m_people.at(static_cast<std::size_t>(person)).device;
    for (int tries = 1; !client.checkIn(tokenOf(person), device); ++tries) {
        if (tries == mostTries)
            throw std::runtime_error{label() + ": a punch was refused too often"};
        ++m_refused;
    }
}

void Target::askForToday(int count)
{
    std::atomic<int> left = count;
    std::atomic<int> answered = 0;
    onAllLanes(m_lanes, [&](int lane) {
        KeptClient client{portOf(lane)};
        while (left-- > 0)
            answered += client.today(tokenOf(lane)).empty() ? 0 : 1;
    });
    if (answered != count)
        throw std::runtime_error{label() + ": " + std::to_string(count - answered) + " requests failed"};
}

std::size_t Target::rows()
{
    return rush::Ledger{}.compare(*m_database, m_people).rows - m_people.size() * 2 * daysBefore;
}

const std::string &Target::tokenOf(int person) const
{
    return m_people.at(static_cast<std::size_t>(person)).tokens.value().accessToken;
}

std::uint16_t Target::portOf(int lane) const
{
    return m_options.ports.at(static_cast<std::size_t>(lane) % m_options.ports.size());
}

} // namespace clockwell::bench
