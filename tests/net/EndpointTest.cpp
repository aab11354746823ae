#include "net/ClientFixture.h"

#include <QList>

namespace clockwell::test {

namespace {

const char *const record = R"({"id":"1","workDate":"2024-05-01","status":"PRESENT"})";
const char *const user = R"({"id":"1","fullName":"N","email":"e","role":"R","status":"S"})";

/// Calls each endpoint as the stores do, and checks the request that reaches the server and the record that
/// is returned.
class Endpoint : public ClientTest
{
protected:
    template <class T>
    T fetch(const char *path, const QByteArray &reply, const QMap<QString, QString> &query = {})
    {
        server.expect("GET", QStringLiteral("/api/") + QString::fromUtf8(path)).reply(200, reply);
        T result = await(
            client().request<T>(QString::fromUtf8(path), QStringLiteral("GET"), query, std::nullopt, true));
        EXPECT_EQ(last().header("Authorization"), "Bearer a1");
        EXPECT_EQ(last().query, query);
        EXPECT_EQ(last().body, "");
        return result;
    }

    template <class T>
    T send(const char *path, const QByteArray &reply, bool authorized)
    {
        server.expect("POST", QStringLiteral("/api/") + QString::fromUtf8(path)).reply(200, reply);
        T result = await(client().request<T>(QString::fromUtf8(path), QStringLiteral("POST"), {},
                                             std::optional(Greeting{QStringLiteral("hi")}), authorized));
        EXPECT_EQ(last().has("Authorization"), authorized);
        EXPECT_EQ(last().target, QByteArray("/api/") + path);
        EXPECT_EQ(last().body, R"({"text":"hi"})");
        return result;
    }

    FakeServer::Request last() const { return server.requests().last(); }
};

} // namespace

TEST_F(Endpoint, AttendanceToday)
{
    const QByteArray reply =
        R"({"workDate":"2024-05-01","open":true,"office":{"name":"HQ","checkInTime":"09:00",)"
        R"("checkOutTime":"18:00","radiusMeters":150},"canCheckIn":true,"canCheckOut":false})";
    EXPECT_EQ(fetch<std::optional<TodayResponse>>("attendance/today", reply)->office.name,
              QStringLiteral("HQ"));
    EXPECT_FALSE(fetch<std::optional<TodayResponse>>("attendance/today", "null"));
}

TEST_F(Endpoint, AttendanceDistance)
{
    const QMap<QString, QString> query{{QStringLiteral("lat"), shortestDecimal(12.9715987)},
                                       {QStringLiteral("lng"), shortestDecimal(-77.5945627)}};
    const QByteArray reply = R"({"inside":false,"distanceMeters":512.25,"radiusMeters":150})";
    EXPECT_EQ(fetch<std::optional<DistanceResponse>>("attendance/distance", reply, query)->distanceMeters,
              512.25);
    EXPECT_EQ(last().target, "/api/attendance/distance?lat=12.9715987&lng=-77.5945627");
    EXPECT_FALSE(fetch<std::optional<DistanceResponse>>("attendance/distance", "null", query));
}

TEST_F(Endpoint, AttendancePunch)
{
    EXPECT_EQ(
        send<PunchResponse>("attendance/punch", R"({"type":"OUT","inside":true,"workingMinutes":485})", true)
            .workingMinutes,
        485);
}

TEST_F(Endpoint, AttendanceMe)
{
    const QByteArray reply = QByteArray("[") + record + "," + record + "]";
    EXPECT_EQ(fetch<QList<AttendanceRecord>>("attendance/me", reply).size(), 2);
}

TEST_F(Endpoint, AttendanceMeSummary)
{
    const QByteArray reply =
        R"({"month":"2024-05","presentDays":20,"lateDays":2,"totalLateMinutes":31,"absentDays":1,)"
        R"("leaveDays":0,"halfDays":0,"totalWorkingMinutes":9600})";
    const QMap<QString, QString> query{{QStringLiteral("month"), QStringLiteral("2024-05")}};
    EXPECT_EQ(fetch<std::optional<MonthlySummary>>("attendance/me/summary", reply, query)->presentDays, 20);
    EXPECT_FALSE(fetch<std::optional<MonthlySummary>>("attendance/me/summary", "null", query));
}

TEST_F(Endpoint, AuthMe)
{
    EXPECT_EQ(fetch<AuthUser>("auth/me", user).fullName, QStringLiteral("N"));
    EXPECT_EQ(fetch<std::optional<AuthUser>>("auth/me", user)->fullName, QStringLiteral("N"));
    EXPECT_FALSE(fetch<std::optional<AuthUser>>("auth/me", "null"));
}

TEST_F(Endpoint, AuthLogin)
{
    const QByteArray reply = QByteArray(R"({"accessToken":"a","refreshToken":"r","user":)") + user + "}";
    EXPECT_EQ(send<LoginResponse>("auth/login", reply, false).refreshToken, QStringLiteral("r"));
    EXPECT_EQ(tokens.access(), QStringLiteral("a1")); // storing the tokens is left to the account
}

TEST_F(Endpoint, AuthSignup)
{
    EXPECT_EQ(send<SignupResponse>("auth/signup", R"({"message":"Check your mail."})", false).message,
              QStringLiteral("Check your mail."));
}

TEST_F(Endpoint, AuthCodesAndPasswords)
{
    for (const char *path :
         {"auth/verify-otp", "auth/resend-otp", "auth/forgot-password", "auth/reset-password"})
        EXPECT_EQ(send<MessageResponse>(path, R"({"message":"ok"})", false).message, QStringLiteral("ok"))
            << path;
}

TEST_F(Endpoint, AuthChangePassword)
{
    send<Empty>("auth/change-password", "", true);
}

} // namespace clockwell::test
