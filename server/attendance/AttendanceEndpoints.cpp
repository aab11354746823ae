#include "server/attendance/AttendanceEndpoints.h"

#include "server/attendance/AttendanceJson.h"
#include "server/attendance/DeviceMonth.h"
#include "server/auth/BearerGuard.h"
#include "server/auth/BodyReader.h"
#include "server/http/ApiError.h"
#include "server/http/NumberText.h"

#include <nlohmann/json.hpp>
#include <spdlog/spdlog.h>

#include <cmath>
#include <ranges>

namespace clockwell::server {

namespace {

constexpr double largestLatitude = 90;
constexpr double largestLongitude = 180;
constexpr std::size_t longestPunchDeviceId = 128;

/// The one value of a query parameter; empty when it is missing or given more than once.
std::string queryValue(const Request &request, const std::string &key)
{
    return request.query.count(key) == 1 ? request.query.find(key)->second : std::string{};
}

double degrees(const Request &request, const std::string &key, double largest,
               std::vector<std::string> &problems)
{
    const auto value = parseNumber(queryValue(request, key));
    if (value && std::abs(*value) <= largest)
        return *value;
    problems.push_back(numberRule(key, -largest, largest));
    return 0;
}

} // namespace

std::vector<Route> AttendanceEndpoints::routes()
{
    return {
        {"GET", "/api/attendance/today", Lane::SignedIn,
         [this](const Request &request) { return today(request); }},
        {"GET", "/api/attendance/distance", Lane::SignedIn,
         [this](const Request &request) { return distance(request); }},
        {"POST", "/api/attendance/punch", Lane::SignedIn,
         [this](const Request &request) { return punch(request); }},
        {"GET", "/api/attendance/me", Lane::SignedIn,
         [this](const Request &request) { return history(request); }},
        {"GET", "/api/attendance/me/summary", Lane::SignedIn,
         [this](const Request &request) { return summary(request); }},
    };
}

Response AttendanceEndpoints::today(const Request &request)
{
    const Employee employee = requireCaller(m_sessions, request);
    return m_database.read([&](Connection &connection) {
        const Office office = requireOffice(connection, employee.officeId);
        const Day day = office.timeZone().dayOf(m_clock());
        const bool open = isOpen(WorkCalendar{connection, employee, office, day, day}.factsOf(day));
        const auto rows = findAttendance(connection, employee.id, day, day);
        const auto worked = rows.empty() ? std::nullopt : std::optional{rows.front().worked()};
        const NextPunch next = nextPunch(open, worked ? &*worked : nullptr);
        Json body{{"workDate", toText(day)}, {"open", open}, {"office", officeJson(office)}};
        if (!rows.empty())
            body["record"] = recordJson(historyDay(rows.front(), day));
        body["canCheckIn"] = next == NextPunch::CheckIn;
        body["canCheckOut"] = next == NextPunch::CheckOut;
        return jsonReply(body);
    });
}

Response AttendanceEndpoints::distance(const Request &request)
{
    const Employee employee = requireCaller(m_sessions, request);
    std::vector<std::string> problems;
    const double latitude = degrees(request, "lat", largestLatitude, problems);
    const double longitude = degrees(request, "lng", largestLongitude, problems);
    if (!problems.empty())
        throw ApiError{400, "VALIDATION_FAILED", problems};
    const Office office =
        m_database.read([&](Connection &connection) { return requireOffice(connection, employee.officeId); });
    const double meters = office.distanceTo(latitude, longitude);
    return jsonReply({{"inside", meters <= static_cast<double>(office.radiusMeters)},
                      {"distanceMeters", meters},
                      {"radiusMeters", office.radiusMeters},
                      {"office", office.name}});
}

Response AttendanceEndpoints::punch(const Request &request)
{
    const Employee employee = requireCaller(m_sessions, request);
    BodyReader body{request};
    PunchClaim claim;
    claim.latitude = body.number("lat", -largestLatitude, largestLatitude);
    claim.longitude = body.number("lng", -largestLongitude, largestLongitude);
    claim.accuracy = body.number("accuracy", 0);
    claim.deviceId = body.text("deviceId", longestPunchDeviceId);
    claim.mockLocation = body.boolean("isMockLocation");
    body.finish();
    const PunchAnswer answer = record(employee, claim);
    spdlog::info("event=punch employee={} type={} request={}", employee.id, answer.type, request.requestId);
    return jsonReply(punchJson(answer));
}

PunchAnswer AttendanceEndpoints::record(const Employee &employee, const PunchClaim &claim)
{
    try {
        PunchAnswer answer = m_punches.punch(employee, claim);
        tell(answer.isRepeated ? "REPEATED" : answer.type);
        return answer;
    } catch (const ApiError &refusal) {
        tell(refusal.error());
        throw;
    } catch (...) {
        tell("FAILED");
        throw;
    }
}

void AttendanceEndpoints::tell(std::string_view outcome) const
{
    if (m_onPunch)
        m_onPunch(outcome);
}

Response AttendanceEndpoints::history(const Request &request)
{
    const Employee employee = requireCaller(m_sessions, request);
    const auto days = m_database.read([&](Connection &connection) {
        const Office office = requireOffice(connection, employee.officeId);
        const Day today = office.timeZone().dayOf(m_clock());
        return historyBetween(connection, employee, office, startOfHistory(today), today, today);
    });
    Json body = Json::array();
    for (const HistoryDay &day : days | std::views::reverse)
        body.push_back(recordJson(day));
    return jsonReply(body);
}

Response AttendanceEndpoints::summary(const Request &request)
{
    const Employee employee = requireCaller(m_sessions, request);
    const auto month = parseMonth(withAsciiDigits(queryValue(request, "month"))); // as the device writes them
    if (!month)
        throw ApiError{400, "VALIDATION_FAILED", "month must be a month like 2026-05."};
    const auto days = m_database.read([&](Connection &connection) {
        const Office office = requireOffice(connection, employee.officeId);
        const Day today = office.timeZone().dayOf(m_clock());
        const auto range = daysOfDeviceMonth(*month, today);
        if (!range)
            throw ApiError{
                400, "VALIDATION_FAILED",
                "month must be near today in the Gregorian, Buddhist, Persian or Umm al-Qura calendar."};
        return historyBetween(connection, employee, office, range->first, range->last, today);
    });
    // The month's own numbers go back: the device reads them in its calendar, too.
    return jsonReply(summaryJson(*month, totalsOf(days)));
}

} // namespace clockwell::server
