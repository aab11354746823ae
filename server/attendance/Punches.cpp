#include "server/attendance/Punches.h"

#include "server/auth/Tokens.h"
#include "server/http/ApiError.h"
#include "server/storage/RowType.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace clockwell::server {

namespace {

struct DatedPunch
{
    Punch punch;
    std::string workDate;

    auto columns() { return std::tuple_cat(punch.columns(), std::tie(workDate)); }
};

PunchAnswer answerFor(const Office &office, const AttendanceRow &row, const std::string &type,
                      double distance)
{
    // Assessed as of its own day, also when a repeat arrives just after midnight.
    return {type, assess(row.worked(), false), row, office.name, distance};
}

/// The employee's last punch, not on a day that was voided, if it was made between two instants. The day that
/// it belongs to need not be today: midnight may lie between, or a move to an office in another time zone.
std::optional<DatedPunch> findPunchBetween(Connection &connection, const std::string &employeeId,
                                           Instant first, Instant last)
{
    constexpr std::chrono::days atMost{1}; // between the dates of any place and of UTC
    const auto dayInUtc = [](Instant instant) {
        return Day{std::chrono::floor<std::chrono::days>(instant).time_since_epoch()};
    };
    // One of each day. The last one is chosen here, for sorting costs SQLite as much as all the rest.
    static const std::string sql =
        "SELECT " + columnsOf<Punch>("p") +
        ", a.work_date FROM attendance a JOIN punches p ON p.attendance_id = a.id WHERE a.employee_id = "
        ":employee"
        " AND a.work_date BETWEEN :earliest AND :latest AND p.at BETWEEN :first AND :last"
        " AND a.check_in_at IS NOT NULL AND NOT EXISTS (SELECT 1 FROM punches later"
        " WHERE later.attendance_id = a.id AND later.ordinal > p.ordinal)";
    auto lastOfDays =
        connection.all<DatedPunch>(sql, employeeId, toText(dayInUtc(first) - atMost),
                                   toText(dayInUtc(last) + atMost), toMillis(first), toMillis(last));
    const auto newest =
        std::ranges::max_element(lastOfDays, {}, [](const DatedPunch &dated) { return dated.punch.at; });
    return newest == lastOfDays.end() ? std::nullopt : std::optional{std::move(*newest)};
}

/// Whole metres, rounded up: a refused distance never reads like the radius itself.
std::string metersText(double meters)
{
    constexpr double farthest = 20'005'000; // no two places on earth are further apart
    if (meters > farthest)
        return "more than 20000 km";
    if (meters >= 10'000)
        return std::to_string(std::llround(meters / 1000)) + " km";
    return std::to_string(std::llround(std::ceil(meters))) + " m";
}

double requireInside(const Office &office, const PunchClaim &claim)
{
    if (claim.accuracy > static_cast<double>(office.maxAccuracyMeters))
        throw ApiError{422, "LOCATION_TOO_IMPRECISE",
                       "Your position is only known to within " + metersText(claim.accuracy) + "; " +
                           metersText(static_cast<double>(office.maxAccuracyMeters)) +
                           " is needed. Move to open sky and try again."};
    const double distance = office.distanceTo(claim.latitude, claim.longitude);
    if (distance <= static_cast<double>(office.radiusMeters))
        return distance;
    const std::string precision =
        claim.accuracy > 0 ? " (your position is known to within " + metersText(claim.accuracy) + ")" : "";
    throw ApiError{422, "OUTSIDE_GEOFENCE",
                   "You are " + metersText(distance) + " away from " + office.name + precision +
                       ". Attendance can be marked within " +
                       metersText(static_cast<double>(office.radiusMeters)) + "."};
}

/// `isNewDay`: of a day that has just been added there are no punches yet. Whoever looks for them all the
/// same has, on PostgreSQL, read where everybody who punches at this moment writes.
void recordPunch(Connection &connection, const std::string &attendanceId, bool isNewDay, const char *type,
                 Instant now, const PunchClaim &claim, double distance)
{
    const auto counted = isNewDay ? std::nullopt : std::optional{attendanceId}; // NULL: nothing is read
    connection.execute(
        "INSERT INTO punches (id, attendance_id, ordinal, type, at, device_id, latitude, longitude, accuracy,"
        " distance) VALUES (:id, :attendance, (SELECT COUNT(*) + 1 FROM punches WHERE attendance_id ="
        " :counted), :type, :at, :device, :latitude, :longitude, :accuracy, :distance)",
        newId(), attendanceId, counted, type, toMillis(now), claim.deviceId, claim.latitude, claim.longitude,
        claim.accuracy, distance);
}

PunchAnswer checkIn(Connection &connection, const Employee &employee, const Office &office,
                    const TimeZone &zone, const PunchClaim &claim, Instant now)
{
    const double distance = requireInside(office, claim);
    AttendanceRow row = newAttendance(office.hours, zone, zone.dayOf(now));
    row.checkInAt = toMillis(now);
    row.checkInDistance = distance;
    const std::string stored = storeAttendance(connection, employee.id, row);
    const bool isNewDay = stored == std::exchange(row.id, stored);
    recordPunch(connection, row.id, isNewDay, "IN", now, claim, distance);
    return answerFor(office, row, "IN", distance);
}

PunchAnswer checkOut(Connection &connection, const Office &office, AttendanceRow row, const PunchClaim &claim,
                     Instant now)
{
    const double distance = requireInside(office, claim);
    row.checkOutAt = toMillis(now);
    row.checkOutDistance = distance;
    storeCheckOut(connection, row);
    recordPunch(connection, row.id, false, "OUT", now, claim, distance);
    return answerFor(office, row, "OUT", distance);
}

} // namespace

std::vector<Punch> findPunches(Connection &connection, const std::string &employeeId, Day day)
{
    static const std::string sql =
        "SELECT " + columnsOf<Punch>("p") +
        " FROM punches p JOIN attendance a ON a.id = p.attendance_id"
        " WHERE a.employee_id = :employee AND a.work_date = :day ORDER BY p.ordinal";
    return connection.all<Punch>(sql, employeeId, toText(day));
}

PunchAnswer Punches::punch(const Employee &employee, const PunchClaim &claim)
{
    // The time is taken once it is this punch's turn, so that punches are recorded in the order of their
    // times.
    return m_database.write(
        [&](Connection &connection) { return punchAt(connection, employee, claim, m_clock()); });
}

PunchAnswer Punches::punchAt(Connection &connection, const Employee &employee, const PunchClaim &claim,
                             Instant now) const
{
    if (claim.mockLocation)
        throw ApiError{422, "MOCK_LOCATION", "Attendance cannot be marked with a simulated location."};
    const Office office = requireOffice(connection, employee.officeId);
    const TimeZone zone = office.timeZone();
    const Day today = zone.dayOf(now);
    const WorkCalendar calendar{connection, employee, office, today, today};
    // From here on others who write beside this employee's days may have this run again, so it comes last.
    if (auto answer = repeated(connection, employee, office, claim, now))
        return std::move(*answer);
    const auto row = findAttendanceOn(connection, employee.id, today);
    const std::string closed = calendar.closedBecause(today);
    const auto worked = row ? std::optional{row->worked()} : std::nullopt;
    switch (nextPunch(closed.empty(), worked ? &*worked : nullptr)) {
    case NextPunch::CheckIn:
        return checkIn(connection, employee, office, zone, claim, now);
    case NextPunch::CheckOut:
        return checkOut(connection, office, *row, claim, now);
    case NextPunch::Closed:
        throw ApiError{409, "DAY_CLOSED", closed};
    case NextPunch::Complete:
        break;
    }
    throw ApiError{409, "ALREADY_COMPLETE", "You have already checked in and out today."};
}

std::optional<PunchAnswer> Punches::repeated(Connection &connection, const Employee &employee,
                                             const Office &office, const PunchClaim &claim, Instant now) const
{
    const auto last = findPunchBetween(connection, employee.id, now - m_repeatWindow, now + m_repeatWindow);
    if (!last)
        return std::nullopt;
    if (last->punch.deviceId == claim.deviceId) {
        const Day day = parseDay(last->workDate).value();
        auto answer = answerFor(office, findAttendanceOn(connection, employee.id, day).value(),
                                last->punch.type, last->punch.distance);
        answer.isRepeated = true;
        return answer;
    }
    if (last->punch.type == "IN")
        throw ApiError{409, "TOO_SOON",
                       "You have just checked in on another device. Please wait a moment to check out."};
    return std::nullopt;
}

} // namespace clockwell::server
