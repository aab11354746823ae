#include "server/demo/DemoHistory.h"

#include "server/attendance/Offices.h"
#include "server/attendance/Punches.h"
#include "server/auth/Tokens.h"

#include <string_view>

namespace clockwell::server {

namespace {

// One letter a day, counted back from yesterday and then from the start again: t on time, l late, h half day,
// a absent, m missing check-out, v on leave (vacation).
constexpr std::string_view demoPattern = "tlthtmattvvtttlttttthtttlttttattt";

constexpr int onTimeMinute = 9 * 60 + 21;
constexpr int lateMinute = 9 * 60 + 44;
constexpr int leaveMinute = 18 * 60 + 2;
constexpr int noonLeaveMinute = 13 * 60 + 5;

char kindOfDay(Day day, Day today)
{
    const auto back = static_cast<std::size_t>((today - day).count() - 1);
    return demoPattern[back % demoPattern.size()];
}

/// A small number that differs from day to day but is the same on every run.
int variation(Day day, int range)
{
    return static_cast<int>((day.time_since_epoch().count() * 37 + 11) % range);
}

class DemoDays
{
public:
    DemoDays(Connection &connection, Database &database, const Employee &employee)
        : m_connection(connection),
          m_employee(employee),
          m_office(requireOffice(connection, employee.officeId)),
          m_punches(database, systemClock(), std::chrono::seconds{0})
    {}

    void add(Day day, char kind)
    {
        if (kind == 'a')
            return;
        if (kind == 'v') {
            m_connection.execute("INSERT INTO leaves (id, employee_id, first_day, last_day, reason)"
                                 " VALUES (:id, :employee, :first, :last, :reason)",
                                 newId(), m_employee.id, toText(day), toText(day), "Vacation");
            return;
        }
        punch(day, (kind == 'l' ? lateMinute : onTimeMinute) + variation(day, 13));
        if (kind != 'm')
            punch(day, (kind == 'h' ? noonLeaveMinute : leaveMinute) + variation(day, 23));
    }

private:
    void punch(Day day, int minute)
    {
        constexpr double degreesPerStep = 0.00001; // about a metre
        PunchClaim claim;
        claim.latitude = m_office.latitude + degreesPerStep * variation(day, 29);
        claim.longitude = m_office.longitude + degreesPerStep * (minute % 31);
        claim.accuracy = 5 + variation(day, 20);
        claim.deviceId = "demo-phone";
        const Instant at = m_office.timeZone().at(day, minute) + std::chrono::seconds{variation(day, 59)};
        m_punches.punchAt(m_connection, m_employee, claim, at);
    }

    Connection &m_connection;
    const Employee &m_employee;
    Office m_office;
    Punches m_punches;
};

} // namespace

void insertDemoHistory(Connection &connection, Database &database, const Employee &employee, Day today)
{
    DemoDays days{connection, database, employee};
    for (Day day = today - demoHistoryLength; day < today; day += std::chrono::days{1})
        days.add(day, kindOfDay(day, today));
}

} // namespace clockwell::server
