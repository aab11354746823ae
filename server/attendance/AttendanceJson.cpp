#include "server/attendance/AttendanceJson.h"

#include <nlohmann/json.hpp>

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
            {"checkInTime", timeOfDayText(office.hours.checkInMinute)},
            {"checkOutTime", timeOfDayText(office.hours.checkOutMinute)},
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
