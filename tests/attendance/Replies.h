#pragma once

#include <QByteArray>

/// Scripted replies of the server.
namespace clockwell::test::replies {

inline QByteArray today(const QByteArray &record, bool canCheckIn, bool canCheckOut, bool open = true,
                        const QByteArray &office = "Head Office")
{
    const auto text = [](bool value) { return value ? QByteArray("true") : QByteArray("false"); };
    return R"({"workDate":"2025-03-03","open":)" + text(open) + R"(,"office":{"name":")" + office +
           R"(","checkInTime":"09:30","checkOutTime":"18:00","radiusMeters":150},"record":)" + record +
           R"(,"canCheckIn":)" + text(canCheckIn) + R"(,"canCheckOut":)" + text(canCheckOut) + "}";
}

inline const QByteArray beforeCheckIn = today("null", true, false);
inline const QByteArray atWork = today(R"({"id":"r1","workDate":"2025-03-03","status":"LATE",)"
                                       R"("checkInAt":"2025-03-03T09:42:00Z","lateMinutes":12})",
                                       false, true);
inline const QByteArray complete = today(R"({"id":"r1","workDate":"2025-03-03","status":"ON_TIME",)"
                                         R"("checkInAt":"2025-03-03T09:04:00Z",)"
                                         R"("checkOutAt":"2025-03-03T17:09:00Z","workingMinutes":485})",
                                         false, false);
inline const QByteArray inside =
    R"({"inside":true,"distanceMeters":37.9,"radiusMeters":150,"office":"Head Office"})";
inline const QByteArray outside = R"({"inside":false,"distanceMeters":1240.2,"radiusMeters":150})";
inline const QByteArray checkedIn =
    R"({"type":"IN","inside":true,"status":"LATE","lateMinutes":12,"office":"Head Office"})";
inline const QByteArray checkedOut =
    R"({"type":"OUT","inside":true,"status":"ON_TIME","workingMinutes":485})";

} // namespace clockwell::test::replies
