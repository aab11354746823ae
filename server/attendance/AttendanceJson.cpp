#include "server/attendance/AttendanceJson.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>

namespace clockwell::server {

namespace {

template <class Value>
void addKnown(Json &json, const char *key, const std::optional<Value> &value)
{
    if (value)
        json[key] = *value;
}

void addTimes(Json &json, const AttendanceRow &row)
{
    json["checkInAt"] = toIsoText(fromMillis(row.checkInAt));
    if (row.checkOutAt)
        json["checkOutAt"] = toIsoText(fromMillis(*row.checkOutAt));
}

/// "HH:mm"; the end of the day is "24:00".
std::string timeOfDay(long long minute)
{
    std::array<char, 48> text{};
    const int length = std::snprintf(text.data(), text.size(), "%02lld:%02lld", minute / 60, minute % 60);
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace

Json recordJson(const HistoryDay &day)
{
    Json json{{"id", day.id}, {"workDate", day.workDate}, {"status", day.assessment.status}};
    if (day.row)
        addTimes(json, *day.row);
    addKnown(json, "lateMinutes", day.assessment.lateMinutes);
    addKnown(json, "earlyLeaveMinutes", day.assessment.earlyLeaveMinutes);
    addKnown(json, "workingMinutes", day.assessment.workingMinutes);
    if (day.row) {
        addKnown(json, "checkInDistanceMeters", day.row->checkInDistance);
        addKnown(json, "checkOutDistanceMeters", day.row->checkOutDistance);
    }
    return json;
}

Json officeJson(const Office &office)
{
    return {{"name", office.name},
            {"checkInTime", timeOfDay(office.hours.checkInMinute)},
            {"checkOutTime", timeOfDay(office.hours.checkOutMinute)},
            {"radiusMeters", office.radiusMeters}};
}

Json punchJson(const PunchAnswer &answer)
{
    Json json{{"type", answer.type}, {"inside", true}, {"status", answer.assessment.status}};
    addKnown(json, "lateMinutes", answer.assessment.lateMinutes);
    addKnown(json, "workingMinutes", answer.assessment.workingMinutes);
    json["office"] = answer.officeName;
    json["distanceMeters"] = answer.distance;
    addTimes(json, answer.row);
    return json;
}

Json summaryJson(Month month, const MonthTotals &totals)
{
    return {{"month", toText(month)},          {"presentDays", totals.presentDays},
            {"lateDays", totals.lateDays},     {"totalLateMinutes", totals.totalLateMinutes},
            {"absentDays", totals.absentDays}, {"leaveDays", totals.leaveDays},
            {"halfDays", totals.halfDays},     {"totalWorkingMinutes", totals.totalWorkingMinutes}};
}

} // namespace clockwell::server
