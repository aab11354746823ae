#include "server/admin/cli/DayPrinter.h"

#include "server/admin/FieldTexts.h"
#include "server/admin/cli/AuditPrinter.h"
#include "server/admin/cli/Table.h"

#include <cmath>
#include <cstdio>

namespace clockwell::server {

namespace {

std::string metresText(const std::optional<double> &metres)
{
    return metres ? std::to_string(std::llround(*metres)) + " m" : "-";
}

std::string minutesText(const std::optional<long long> &minutes)
{
    return minutes ? std::to_string(*minutes) + " min" : "-";
}

/// "09:50:00", with the distance if it is known
std::string countedTime(const EmployeeDay &day, const std::optional<long long> &millis,
                        const std::optional<double> &distance)
{
    if (!millis)
        return "-";
    return wallClockText(day.zone, fromMillis(*millis)) + (distance ? " at " + metresText(distance) : "");
}

std::string countedTable(const DayRecord &record)
{
    const EmployeeDay &day = record.day;
    const Assessment found = record.assessment.value_or(Assessment{"-", {}, {}, {}});
    const AttendanceRow none;
    const AttendanceRow &row = day.row ? *day.row : none;
    const auto checkInAt = day.row ? std::optional{row.checkInAt} : std::nullopt;
    return tableText({"Employee", day.employee.fullName},
                     {{"E-mail", day.employee.email},
                      {"Day", toText(day.day) + " (" + weekdayNames.at(weekdayIndex(day.day)) + ")"},
                      {"Office", day.office.name + " (" + day.zone.name() + ")"},
                      {"Status", found.status},
                      {"Check-in", countedTime(day, checkInAt, row.checkInDistance)},
                      {"Check-out", countedTime(day, row.checkOutAt, row.checkOutDistance)},
                      {"Late", minutesText(found.lateMinutes)},
                      {"Left early", minutesText(found.earlyLeaveMinutes)},
                      {"Worked", minutesText(found.workingMinutes)}});
}

std::string punchTable(const DayRecord &record)
{
    if (record.punches.empty())
        return "\nNo punches.\n";
    std::vector<std::vector<std::string>> rows;
    rows.reserve(record.punches.size());
    for (const Punch &punch : record.punches)
        rows.push_back({punch.type, wallClockText(record.day.zone, fromMillis(punch.at)),
                        toIsoText(fromMillis(punch.at)), metresText(punch.distance)});
    return "\n" + tableText({"PUNCH", "TIME", "UTC", "DISTANCE"}, rows);
}

std::string correctionTable(const DayRecord &record)
{
    if (record.corrections.empty())
        return {};
    std::vector<std::vector<std::string>> rows;
    rows.reserve(record.corrections.size());
    for (const AuditEntry &entry : record.corrections)
        rows.push_back({toIsoText(fromMillis(entry.at)), whoText(entry), entry.command, changeText(entry),
                        entry.reason.value_or("-")});
    return "\n" + tableText({"CORRECTED", "BY", "COMMAND", "CHANGE", "REASON"}, rows);
}

template <class Value>
Json known(const std::optional<Value> &value)
{
    return value ? Json(*value) : Json(nullptr);
}

void addCounted(Json &json, const DayRecord &record)
{
    const Assessment found = record.assessment.value_or(Assessment{});
    const Json counted = countedJson(record.day);
    for (const char *key : {"checkIn", "checkOut", "checkInAt", "checkOutAt"})
        json[key] = counted.is_null() ? Json(nullptr) : counted.at(key);
    json["status"] = record.assessment ? Json(found.status) : Json(nullptr);
    json["lateMinutes"] = known(found.lateMinutes);
    json["earlyLeaveMinutes"] = known(found.earlyLeaveMinutes);
    json["workingMinutes"] = known(found.workingMinutes);
}

} // namespace

Json dayRecordJson(const DayRecord &record)
{
    const EmployeeDay &day = record.day;
    Json json;
    json["email"] = day.employee.email;
    json["fullName"] = day.employee.fullName;
    json["date"] = toText(day.day);
    json["office"] = day.office.name;
    json["timeZone"] = day.zone.name();
    addCounted(json, record);
    json["punches"] = Json::array();
    for (const Punch &punch : record.punches)
        json["punches"].push_back(Json{{"type", punch.type},
                                       {"time", wallClockText(day.zone, fromMillis(punch.at))},
                                       {"at", toIsoText(fromMillis(punch.at))},
                                       {"distanceMeters", punch.distance}});
    json["corrections"] = Json::array();
    for (const AuditEntry &entry : record.corrections)
        json["corrections"].push_back(auditJson(entry));
    return json;
}

void printDayRecord(const DayRecord &record, bool json)
{
    if (json)
        return printJson(dayRecordJson(record));
    const std::string text = countedTable(record) + punchTable(record) + correctionTable(record);
    std::fputs(text.c_str(), stdout);
}

} // namespace clockwell::server
