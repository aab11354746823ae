#include "server/admin/Days.h"

#include "server/admin/AdminError.h"
#include "server/admin/Employees.h"
#include "server/admin/Printable.h"
#include "server/attendance/History.h"
#include "server/attendance/WorkCalendar.h"

namespace clockwell::server {

namespace {

std::string dayText(const EmployeeDay &day)
{
    return toText(day.day) + " of " + personText(day.employee);
}

void requireAnother(const Audit &audit, const EmployeeDay &day)
{
    const Employee &administrator = audit.administrator().value();
    if (administrator.id == day.employee.id)
        throw refused("Nobody corrects their own attendance. Ask another administrator.");
    if (!administrator.companyId || administrator.companyId != day.employee.companyId)
        throw refused(personText(administrator) + " is no administrator of the company of " +
                      personText(day.employee) + ".");
}

/// Why nobody could check in on a day, as a sentence; empty on an open day.
std::string closedReason(Connection &connection, const EmployeeDay &day)
{
    const WorkCalendar calendar{connection, day.employee, day.office, day.day, day.day};
    const DayFacts facts = calendar.factsOf(day.day);
    if (isOpen(facts))
        return {};
    if (!facts.joined)
        return "The first working day is " + toText(calendar.joinedOn()) + ".";
    if (facts.hasLeft)
        return "The last working day was " + toText(*calendar.lastDay()) + ".";
    return printable(day.office.name) + (facts.holiday ? " has a holiday that day." : " is closed that day.");
}

/// Without a record of the day the rules are those for a check-in on it.
AttendanceRow newRow(Connection &connection, const EmployeeDay &day)
{
    if (auto voided = findVoidedAttendance(connection, day.employee.id, day.day))
        return std::move(*voided);
    const std::string closed = closedReason(connection, day);
    if (!closed.empty())
        throw refused("There is no check-in on " + dayText(day) + ", and there could be none: " + closed);
    return newAttendance(day.office.hours, day.zone, day.day);
}

Instant pastMoment(const EmployeeDay &day, const ClockTime &time, Instant now)
{
    const Instant moment = momentOf(day.zone, day.day, time);
    if (moment > now)
        throw refused(wallClockText(day.zone, moment) + " on " + toText(day.day) + " in " + day.zone.name() +
                      " is still to come.");
    return moment;
}

/// Whether a time to the minute says the same as what is known to the millisecond.
bool isWithin(Instant minute, long long millis)
{
    return std::chrono::floor<std::chrono::minutes>(fromMillis(millis)) == minute;
}

void applyCheckIn(AttendanceRow &row, bool isNew, Instant moment)
{
    if (!isNew && isWithin(moment, row.checkInAt))
        return;
    row.checkInAt = toMillis(moment);
    row.checkInDistance.reset(); // where the employee was then is not known
}

void applyCheckOut(AttendanceRow &row, Instant moment)
{
    if (row.checkOutAt && isWithin(moment, *row.checkOutAt))
        return;
    row.checkOutAt = toMillis(moment);
    row.checkOutDistance.reset();
}

AttendanceRow corrected(Connection &connection, const EmployeeDay &day, const Correction &correction,
                        Instant now)
{
    if (!day.row && !correction.checkIn)
        throw refused("There is no check-in on " + dayText(day) + ". Pass --check-in.");
    AttendanceRow row = day.row ? *day.row : newRow(connection, day);
    if (correction.checkIn)
        applyCheckIn(row, !day.row, pastMoment(day, *correction.checkIn, now));
    if (correction.checkOut)
        applyCheckOut(row, pastMoment(day, *correction.checkOut, now));
    if (row.checkOutAt && *row.checkOutAt <= row.checkInAt)
        throw refused("Check-out at " + wallClockText(day.zone, fromMillis(*row.checkOutAt)) +
                      " is not after check-in at " + wallClockText(day.zone, fromMillis(row.checkInAt)) +
                      ".");
    return row;
}

std::string timesText(const EmployeeDay &day)
{
    const auto text = [&](const std::optional<long long> &millis) {
        return millis ? wallClockText(day.zone, fromMillis(*millis)) : "-";
    };
    return "check-in " + text(day.row ? std::optional{day.row->checkInAt} : std::nullopt) + ", check-out " +
           text(day.row ? day.row->checkOutAt : std::nullopt);
}

ChangedDay recorded(const Audit &audit, const std::string &command, const EmployeeDay &before,
                    const EmployeeDay &after, const std::string &reason)
{
    audit.add({command, before.employee.email, before.employee.id, toText(before.day), countedJson(before),
               countedJson(after), reason});
    const std::string verb = after.row ? "Corrected " : "Voided ";
    return {
        {true, verb + dayText(before) + ": " + timesText(after) + " (before: " + timesText(before) + ")."},
        after};
}

std::optional<Assessment> assessmentOf(Connection &connection, const EmployeeDay &day, Day today)
{
    if (day.row)
        return historyDay(*day.row, today).assessment;
    const auto days = historyBetween(connection, day.employee, day.office, day.day, day.day, today);
    return days.empty() ? std::nullopt : std::optional{days.front().assessment};
}

} // namespace

EmployeeDay requireEmployeeDay(Connection &connection, const std::string &email, Day day)
{
    PlacedEmployee person = requireEmployee(connection, email);
    if (!person.employee.officeId)
        throw refused(personText(person.employee) + " has no office, and so no working days.");
    TimeZone zone = person.office.timeZone();
    auto row = findAttendanceOn(connection, person.employee.id, day);
    return {std::move(person.employee), std::move(person.office), std::move(zone), day, std::move(row)};
}

ChangedDay correctDay(Connection &connection, const Audit &audit, const EmployeeDay &day,
                      const Correction &correction, Instant now)
{
    requireAnother(audit, day);
    EmployeeDay after = day;
    after.row = corrected(connection, day, correction, now);
    if (countedJson(after) == countedJson(day))
        return {{false, "The " + dayText(day) + " is so already; nothing was changed."}, day};
    after.row->id = storeAttendance(connection, day.employee.id, *after.row);
    return recorded(audit, "days correct", day, after, correction.reason);
}

ChangedDay voidDay(Connection &connection, const Audit &audit, const EmployeeDay &day,
                   const std::string &reason)
{
    requireAnother(audit, day);
    if (!day.row)
        return {{false, "There is no check-in on " + dayText(day) + "; nothing was changed."}, day};
    voidAttendance(connection, day.row->id);
    EmployeeDay after = day;
    after.row.reset();
    return recorded(audit, "days void", day, after, reason);
}

Json countedJson(const EmployeeDay &day)
{
    if (!day.row)
        return nullptr;
    const auto add = [&](Json &json, const std::string &key, const std::optional<long long> &millis) {
        json[key] = millis ? Json(wallClockText(day.zone, fromMillis(*millis))) : Json(nullptr);
        json[key + "At"] = millis ? Json(toIsoText(fromMillis(*millis))) : Json(nullptr);
    };
    Json json;
    add(json, "checkIn", day.row->checkInAt);
    add(json, "checkOut", day.row->checkOutAt);
    return json;
}

DayRecord readDayRecord(Connection &connection, const EmployeeDay &day, Instant now)
{
    return {day, assessmentOf(connection, day, day.zone.dayOf(now)),
            findPunches(connection, day.employee.id, day.day),
            listCorrections(connection, day.employee.id, day.day)};
}

} // namespace clockwell::server
