#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <chrono>
#include <optional>

namespace clockwell {

/// A moment as the server sends it, exact to the millisecond, UTC.
using Instant = std::chrono::sys_time<std::chrono::milliseconds>;

/// A number that some servers send as a string; no value if it cannot be read as a number.
struct LenientDouble
{
    std::optional<double> value;

    bool operator==(const LenientDouble &) const = default;
};

/// A message sent as one string or as a list of strings.
struct MessageField
{
    QString text;

    bool operator==(const MessageField &) const = default;
};

/// The result type of a call that ignores the reply body.
struct Empty
{};

struct TokenPair
{
    QString accessToken;
    QString refreshToken;

    bool operator==(const TokenPair &) const = default;
};
BOOST_DESCRIBE_STRUCT(TokenPair, (), (accessToken, refreshToken))

struct AuthUser
{
    QString id;
    QString fullName;
    QString email;
    std::optional<QString> phone;
    QString role;
    QString status;
    std::optional<QString> instituteId;
    std::optional<QString> officeLocationId;

    bool operator==(const AuthUser &) const = default;
};
BOOST_DESCRIBE_STRUCT(AuthUser, (), (id, fullName, email, phone, role, status, instituteId, officeLocationId))

struct LoginResponse
{
    QString accessToken;
    QString refreshToken;
    AuthUser user;

    bool operator==(const LoginResponse &) const = default;
};
BOOST_DESCRIBE_STRUCT(LoginResponse, (), (accessToken, refreshToken, user))

struct SignupResponse
{
    QString message;
    std::optional<QString> status;
    std::optional<bool> emailVerified;
    std::optional<QString> employeeId;
    std::optional<QString> email;
    std::optional<QString> demoCode;

    bool operator==(const SignupResponse &) const = default;
};
BOOST_DESCRIBE_STRUCT(SignupResponse, (), (message, status, emailVerified, employeeId, email, demoCode))

struct MessageResponse
{
    std::optional<QString> message;
    std::optional<bool> emailVerified;
    std::optional<QString> status;
    std::optional<QString> demoCode;

    bool operator==(const MessageResponse &) const = default;
};
BOOST_DESCRIBE_STRUCT(MessageResponse, (), (message, emailVerified, status, demoCode))

struct OfficeBlock
{
    QString name;
    QString checkInTime;
    QString checkOutTime;
    qint64 radiusMeters = 0;

    bool operator==(const OfficeBlock &) const = default;
};
BOOST_DESCRIBE_STRUCT(OfficeBlock, (), (name, checkInTime, checkOutTime, radiusMeters))

/// One working day.
struct AttendanceRecord
{
    QString id;
    QString workDate;
    QString status;
    std::optional<Instant> checkInAt;
    std::optional<Instant> checkOutAt;
    std::optional<qint64> lateMinutes;
    std::optional<qint64> earlyLeaveMinutes;
    std::optional<qint64> workingMinutes;
    std::optional<LenientDouble> checkInDistanceMeters;
    std::optional<LenientDouble> checkOutDistanceMeters;

    bool operator==(const AttendanceRecord &) const = default;
};
BOOST_DESCRIBE_STRUCT(AttendanceRecord, (),
                      (id, workDate, status, checkInAt, checkOutAt, lateMinutes, earlyLeaveMinutes,
                       workingMinutes, checkInDistanceMeters, checkOutDistanceMeters))

struct TodayResponse
{
    QString workDate;
    bool open = false;
    OfficeBlock office;
    std::optional<AttendanceRecord> record;
    bool canCheckIn = false;
    bool canCheckOut = false;

    bool operator==(const TodayResponse &) const = default;
};
BOOST_DESCRIBE_STRUCT(TodayResponse, (), (workDate, open, office, record, canCheckIn, canCheckOut))

struct DistanceResponse
{
    bool inside = false;
    double distanceMeters = 0;
    qint64 radiusMeters = 0;
    std::optional<QString> office;

    bool operator==(const DistanceResponse &) const = default;
};
BOOST_DESCRIBE_STRUCT(DistanceResponse, (), (inside, distanceMeters, radiusMeters, office))

struct PunchResponse
{
    QString type;
    bool inside = false;
    std::optional<QString> status;
    std::optional<qint64> lateMinutes;
    std::optional<qint64> workingMinutes;
    std::optional<QString> office;
    std::optional<double> distanceMeters;
    std::optional<Instant> checkInAt;
    std::optional<Instant> checkOutAt;

    bool operator==(const PunchResponse &) const = default;
};
BOOST_DESCRIBE_STRUCT(PunchResponse, (),
                      (type, inside, status, lateMinutes, workingMinutes, office, distanceMeters, checkInAt,
                       checkOutAt))

struct MonthlySummary
{
    QString month;
    qint64 presentDays = 0;
    qint64 lateDays = 0;
    qint64 totalLateMinutes = 0;
    qint64 absentDays = 0;
    qint64 leaveDays = 0;
    qint64 halfDays = 0;
    qint64 totalWorkingMinutes = 0;

    bool operator==(const MonthlySummary &) const = default;
};
BOOST_DESCRIBE_STRUCT(MonthlySummary, (),
                      (month, presentDays, lateDays, totalLateMinutes, absentDays, leaveDays, halfDays,
                       totalWorkingMinutes))

/// The body of an error reply.
struct APIErrorBody
{
    std::optional<qint64> statusCode;
    std::optional<QString> error;
    std::optional<MessageField> message;

    bool operator==(const APIErrorBody &) const = default;
};
BOOST_DESCRIBE_STRUCT(APIErrorBody, (), (statusCode, error, message))

} // namespace clockwell
