#include "net/Decoding.h"

#include "net/Errors.h"

#include <QList>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

namespace clockwell {

namespace {

const char recordHead[] = R"({"id":"r","workDate":"2024-05-01","status":"PRESENT")";

AttendanceRecord recordWith(const QByteArray &fields)
{
    return decode<AttendanceRecord>(recordHead + (fields.isEmpty() ? "" : "," + fields) + "}");
}

template <class T>
QString failure(const QByteArray &json)
{
    try {
        decode<T>(json);
    } catch (const DecodingError &error) {
        return error.text();
    }
    return QStringLiteral("(decoded)");
}

#define EXPECT_FAILS(Type, json)                                                                             \
    EXPECT_THROW(decode<Type>(QByteArray(json)), DecodingError) << QByteArray(json).toStdString()

std::optional<double> distance(const QByteArray &value)
{
    const AttendanceRecord record = recordWith("\"checkInDistanceMeters\":" + value);
    EXPECT_TRUE(record.checkInDistanceMeters.has_value());
    return record.checkInDistanceMeters.value_or(LenientDouble{}).value;
}

std::optional<QString> message(const QByteArray &value)
{
    const APIErrorBody body = decode<APIErrorBody>("{\"message\":" + value + "}");
    return body.message ? std::optional(body.message->text) : std::nullopt;
}

const QByteArray office = R"({"name":"HQ","checkInTime":"09:00","checkOutTime":"18:00","radiusMeters":150})";
const QByteArray day = R"("workDate":"2024-05-01","open":true,"canCheckIn":true,"canCheckOut":false)";

} // namespace

TEST(Decoding, TokenPairNeedsBothTokens)
{
    const auto pair = decode<TokenPair>(R"({"accessToken":"a","refreshToken":"r"})");
    EXPECT_EQ(pair.accessToken, QStringLiteral("a"));
    EXPECT_EQ(pair.refreshToken, QStringLiteral("r"));
    EXPECT_FAILS(TokenPair, R"({"accessToken":"a"})");
    EXPECT_FAILS(TokenPair, R"({"refreshToken":"r"})");
    EXPECT_FAILS(TokenPair, R"({"accessToken":"a","refreshToken":null})");
    EXPECT_FAILS(TokenPair, R"({"accesstoken":"a","refreshToken":"r"})");
}

TEST(Decoding, LoginResponseContainsTheUser)
{
    const auto reply = decode<LoginResponse>(
        R"({"accessToken":"a","refreshToken":"r","user":{"id":"1","fullName":"N","email":"e","role":"EMPLOYEE","status":"ACTIVE"}})");
    EXPECT_EQ(reply.user.fullName, QStringLiteral("N"));
    EXPECT_FAILS(LoginResponse, R"({"accessToken":"a","refreshToken":"r"})");
    EXPECT_FAILS(LoginResponse, R"({"accessToken":"a","refreshToken":"r","user":{}})");
}

TEST(Decoding, AuthUserWithoutOptionalFieldsDecodes)
{
    const auto user = decode<AuthUser>(R"({"id":"1","fullName":"N","email":"e","role":"R","status":"S"})");
    EXPECT_EQ(user.role, QStringLiteral("R"));
    EXPECT_FALSE(user.phone);
    EXPECT_FALSE(user.instituteId);
    EXPECT_FALSE(user.officeLocationId);
}

TEST(Decoding, AuthUserWithAllFieldsDecodes)
{
    const auto user = decode<AuthUser>(
        R"({"id":"1","fullName":"N","email":"e","phone":"","role":"R","status":"S","instituteId":"i","officeLocationId":"o"})");
    EXPECT_EQ(user.phone, QStringLiteral(""));
    EXPECT_EQ(user.instituteId, QStringLiteral("i"));
    EXPECT_EQ(user.officeLocationId, QStringLiteral("o"));
}

TEST(Decoding, AuthUserNeedsEachRequiredField)
{
    const QList<QByteArray> fields{R"("id":"1")", R"("fullName":"N")", R"("email":"e")", R"("role":"R")",
                                   R"("status":"S")"};
    for (const QByteArray &left : fields) {
        QList<QByteArray> others = fields;
        others.removeOne(left);
        EXPECT_FAILS(AuthUser, "{" + others.join(',') + "}");
    }
    EXPECT_NO_THROW(decode<AuthUser>("{" + fields.join(',') + "}"));
}

TEST(Decoding, AuthUserOptionalOfWrongTypeFails)
{
    EXPECT_FAILS(AuthUser, R"({"id":"1","fullName":"N","email":"e","phone":5,"role":"R","status":"S"})");
}

TEST(Decoding, SignupResponseNeedsItsMessage)
{
    const auto reply = decode<SignupResponse>(
        R"({"message":"ok","status":"PENDING","emailVerified":false,"employeeId":"e","email":"m","demoCode":"123456"})");
    EXPECT_EQ(reply.emailVerified, false);
    EXPECT_EQ(reply.demoCode, QStringLiteral("123456"));
    EXPECT_FALSE(decode<SignupResponse>(R"({"message":"ok"})").emailVerified);
    EXPECT_FAILS(SignupResponse, "{}");
    EXPECT_FAILS(SignupResponse, R"({"message":["ok"]})");
}

TEST(Decoding, MessageResponseMayBeEmpty)
{
    EXPECT_FALSE(decode<MessageResponse>("{}").message);
    EXPECT_EQ(decode<MessageResponse>(R"({"emailVerified":true})").emailVerified, true);
}

TEST(Decoding, BoolIsNeitherANumberNorAString)
{
    EXPECT_FAILS(MessageResponse, R"({"emailVerified":1})");
    EXPECT_FAILS(MessageResponse, R"({"emailVerified":0})");
    EXPECT_FAILS(MessageResponse, R"({"emailVerified":"true"})");
}

TEST(Decoding, TodayWithoutRecordHasNone)
{
    const auto today = decode<TodayResponse>("{" + day + ",\"office\":" + office + "}");
    EXPECT_FALSE(today.record);
    EXPECT_TRUE(today.open);
    EXPECT_TRUE(today.canCheckIn);
    EXPECT_FALSE(today.canCheckOut);
    EXPECT_EQ(today.office.radiusMeters, 150);
    EXPECT_FALSE(decode<TodayResponse>("{" + day + ",\"record\":null,\"office\":" + office + "}").record);
}

TEST(Decoding, TodayWithRecordHasIt)
{
    const auto today = decode<TodayResponse>("{" + day + ",\"office\":" + office +
                                             ",\"record\":" + recordHead + ",\"lateMinutes\":7}}");
    ASSERT_TRUE(today.record);
    EXPECT_EQ(today.record->lateMinutes, 7);
}

TEST(Decoding, TodayWithoutOfficeFails)
{
    EXPECT_FAILS(TodayResponse, "{" + day + "}");
    EXPECT_FAILS(TodayResponse, "{" + day + ",\"office\":null}");
    EXPECT_FAILS(TodayResponse, "{" + day + R"(,"office":{"name":"HQ"}})");
}

TEST(Decoding, TodayWithBadRecordFails)
{
    EXPECT_FAILS(TodayResponse, "{" + day + ",\"office\":" + office + ",\"record\":{}}");
    EXPECT_FAILS(TodayResponse, "{" + day + ",\"office\":" + office + ",\"record\":[]}");
}

TEST(Decoding, DistanceAndPunchAndSummaryDecode)
{
    const auto where = decode<DistanceResponse>(R"({"inside":true,"distanceMeters":12,"radiusMeters":150})");
    EXPECT_EQ(where.distanceMeters, 12.0);
    EXPECT_FALSE(where.office);
    EXPECT_FAILS(DistanceResponse, R"({"inside":true,"distanceMeters":"12","radiusMeters":150})");

    const auto punch = decode<PunchResponse>(
        R"({"type":"IN","inside":true,"status":"LATE","lateMinutes":12,"distanceMeters":35.7,"checkInAt":"2024-05-01T09:15:30Z"})");
    EXPECT_EQ(punch.distanceMeters, 35.7);
    EXPECT_EQ(punch.checkInAt->time_since_epoch().count(), 1'714'554'930'000);
    EXPECT_FALSE(punch.workingMinutes);
    EXPECT_FAILS(PunchResponse, R"({"type":"IN","inside":true,"distanceMeters":"35.7"})");

    const auto summary = decode<MonthlySummary>(
        R"({"month":"2024-05","presentDays":1,"lateDays":2,"totalLateMinutes":3,"absentDays":4,"leaveDays":5,"halfDays":6,"totalWorkingMinutes":7})");
    EXPECT_EQ(summary.totalWorkingMinutes, 7);
    EXPECT_EQ(summary.halfDays, 6);
    EXPECT_FAILS(MonthlySummary, R"({"month":"2024-05"})");
}

TEST(Decoding, ListKeepsTheServersOrder)
{
    const auto list = decode<QList<AttendanceRecord>>(
        R"([{"id":"b","workDate":"2","status":"S"},{"id":"a","workDate":"1","status":"S"}])");
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list[0].id, QStringLiteral("b"));
    EXPECT_EQ(list[1].id, QStringLiteral("a"));
    EXPECT_TRUE(decode<QList<AttendanceRecord>>(QByteArray("[]")).isEmpty());
}

TEST(Decoding, ListWithOneBadElementFails)
{
    EXPECT_FAILS(QList<AttendanceRecord>, R"([{"id":"b","workDate":"2","status":"S"},null])");
    EXPECT_FAILS(QList<AttendanceRecord>, "{}");
    EXPECT_FAILS(QList<AttendanceRecord>, "null");
}

TEST(Decoding, OnlyNullGivesAnEmptyOptional)
{
    EXPECT_FALSE(decode<std::optional<AuthUser>>(QByteArray("null")));
    EXPECT_FALSE(decode<std::optional<AuthUser>>(QByteArray(" null\n")));
    EXPECT_TRUE(decode<std::optional<MessageResponse>>(QByteArray("{}")));
    EXPECT_FAILS(std::optional<AuthUser>, "{}");
    EXPECT_FAILS(std::optional<AuthUser>, "");
    EXPECT_FAILS(AuthUser, "null");
}

TEST(Decoding, UnknownKeysAreIgnored)
{
    EXPECT_EQ(recordWith(R"("extra":{"deep":[1,2,{}]},"lateMinutes":3)").lateMinutes, 3);
}

TEST(Decoding, FirstOfDuplicateKeysCounts)
{
    EXPECT_EQ(recordWith(R"("lateMinutes":3,"lateMinutes":4)").lateMinutes, 3);
}

TEST(Decoding, OrderOfTheKeysDoesNotMatter)
{
    const auto pair =
        decode<TokenPair>(R"({"refreshToken":"r","x":1,"accessToken":"a","refreshToken":"later"})");
    EXPECT_EQ(pair.accessToken, QStringLiteral("a"));
    EXPECT_EQ(pair.refreshToken, QStringLiteral("r"));
    const auto twice = decode<TokenPair>(R"({"accessToken":"a","accessToken":"later","refreshToken":"r"})");
    EXPECT_EQ(twice.accessToken, QStringLiteral("a"));
    EXPECT_EQ(twice.refreshToken, QStringLiteral("r"));
}

TEST(Decoding, EscapedKeysAreUnescaped)
{
    EXPECT_EQ(recordWith(R"("l\u0061teMinutes":3)").lateMinutes, 3);
}

TEST(Decoding, IntAcceptsIntegralNumbersOnly)
{
    EXPECT_EQ(recordWith(R"("lateMinutes":5)").lateMinutes, 5);
    EXPECT_EQ(recordWith(R"("lateMinutes":-5)").lateMinutes, -5);
    EXPECT_EQ(recordWith(R"("lateMinutes":5.0)").lateMinutes, 5);
    EXPECT_EQ(recordWith(R"("lateMinutes":5e1)").lateMinutes, 50);
    EXPECT_FALSE(recordWith(R"("lateMinutes":null)").lateMinutes);
    for (const char *bad : {"\"5\"", "5.5", "1e-1", "true", "[]", "{}", "05", "+5", "0x5", "NaN"})
        EXPECT_THROW(recordWith(QByteArray("\"lateMinutes\":") + bad), DecodingError) << bad;
}

TEST(Decoding, IntBeyond64BitsFails)
{
    EXPECT_EQ(recordWith(R"("lateMinutes":9223372036854775807)").lateMinutes,
              std::numeric_limits<qint64>::max());
    EXPECT_EQ(recordWith(R"("lateMinutes":-9223372036854775808)").lateMinutes,
              std::numeric_limits<qint64>::min());
    for (const char *bad : {"9223372036854775808", "18446744073709551615", "18446744073709551616",
                            "-9223372036854775809", "1e19", "-1e19", "1e400"})
        EXPECT_THROW(recordWith(QByteArray("\"lateMinutes\":") + bad), DecodingError) << bad;
}

TEST(Decoding, DoubleAcceptsEveryNumber)
{
    const auto read = [](const QByteArray &number) {
        return decode<DistanceResponse>(R"({"inside":true,"radiusMeters":1,"distanceMeters":)" + number + "}")
            .distanceMeters;
    };
    EXPECT_EQ(read("35.7"), 35.7);
    EXPECT_EQ(read("-0"), 0.0);
    EXPECT_EQ(read("1e3"), 1000.0);
    EXPECT_EQ(read("18446744073709551615"), 18446744073709551615.0);
    EXPECT_THROW(read("1e999"), DecodingError);
    EXPECT_THROW(read("Infinity"), DecodingError);
}

TEST(Decoding, DateWithOffsetDecodes)
{
    EXPECT_EQ(
        recordWith(R"("checkInAt":"2024-05-01T09:15:30.123+05:30")").checkInAt->time_since_epoch().count(),
        1'714'554'930'123 - 330 * 60'000);
    EXPECT_FALSE(recordWith(R"("checkInAt":null)").checkInAt);
}

TEST(Decoding, BadDateFailsTheReplyAndIsQuotedInTheError)
{
    const auto text = [](const QByteArray &value) {
        return failure<AttendanceRecord>(recordHead + QByteArray(R"(,"checkInAt":)") + value + "}");
    };
    EXPECT_EQ(text(R"("09:15:30")"), QStringLiteral("Bad date: 09:15:30"));
    EXPECT_EQ(text(R"("2024-05-01 09:15:30")"), QStringLiteral("Bad date: 2024-05-01 09:15:30"));
    EXPECT_EQ(text(R"("2024-05-01")"), QStringLiteral("Bad date: 2024-05-01"));
    EXPECT_EQ(text(R"("")"), QStringLiteral("Bad date: "));
    EXPECT_NE(text("1714554930"), QStringLiteral("(decoded)"));
}

TEST(Decoding, MessageFieldAcceptsStringsAndLists)
{
    EXPECT_EQ(message(R"("Wrong password.")"), QStringLiteral("Wrong password."));
    EXPECT_EQ(message(R"("")"), QStringLiteral(""));
    EXPECT_EQ(message(R"(["a","b","c"])"), QStringLiteral("a, b, c"));
    EXPECT_EQ(message(R"(["only"])"), QStringLiteral("only"));
    EXPECT_EQ(message("[]"), QStringLiteral(""));
    EXPECT_EQ(message(R"(["",""])"), QStringLiteral(", "));
}

TEST(Decoding, MessageFieldOfAnyOtherTypeGivesRequestFailed)
{
    for (const char *other :
         {"42", "true", "{}", R"({"a":"b"})", R"(["a",1])", R"(["a",null])", R"([["a"]])"})
        EXPECT_EQ(message(other), QStringLiteral("Request failed")) << other;
}

TEST(Decoding, NullOrMissingMessageIsNoMessage)
{
    EXPECT_EQ(message("null"), std::nullopt);
    EXPECT_FALSE(decode<APIErrorBody>("{}").message);
}

TEST(Decoding, ErrorBodyHasMessageAndCode)
{
    const auto body = decode<APIErrorBody>(R"({"statusCode":400,"error":"BAD","message":"No."})");
    EXPECT_EQ(body.statusCode, 400);
    EXPECT_EQ(body.error, QStringLiteral("BAD"));
    EXPECT_EQ(body.message->text, QStringLiteral("No."));
    EXPECT_FAILS(APIErrorBody, R"({"statusCode":"400"})");
    EXPECT_FAILS(APIErrorBody, R"({"error":{}})");
    EXPECT_FAILS(APIErrorBody, "[]");
}

TEST(Decoding, LenientDoubleAcceptsNumbersAndNumbersInStrings)
{
    EXPECT_EQ(distance("35.7"), 35.7);
    EXPECT_EQ(distance("\"35.7\""), 35.7);
    EXPECT_EQ(distance("7"), 7.0);
    EXPECT_EQ(distance("\"12.5\""), 12.5);
    EXPECT_EQ(distance("\"-3\""), -3.0);
    EXPECT_EQ(distance("\"1e3\""), 1000.0);
    EXPECT_EQ(distance("\"+2\""), 2.0);
    EXPECT_EQ(distance("\"0x10\""), 16.0);
    EXPECT_EQ(distance("\"inf\""), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(distance("\"nan\"").value_or(0)));
}

TEST(Decoding, LenientDoubleNeverFailsTheReply)
{
    for (const char *bad : {"\"far\"", "true", "false", "{}", "[]", "[1]", "\"\"", "\" 12\"", "\"\\t12\"",
                            "\"\\n12\"", "\"\\u000b12\"", "\"\\f12\"", "\"\\r12\"", "\"12 \"", "\"12 m\"",
                            "\"12,5\"", "\"\\u000012\"", "\"12\\u0000\"", "\"12\\u00003\""})
        EXPECT_EQ(distance(bad), std::nullopt) << bad;
}

TEST(Decoding, LenientDoubleNullLeavesTheFieldEmpty)
{
    EXPECT_FALSE(recordWith(R"("checkInDistanceMeters":null)").checkInDistanceMeters);
    EXPECT_FALSE(recordWith("").checkInDistanceMeters);
}

TEST(Decoding, LenientDoubleIsIndependentOfTheLocale)
{
    // Not every machine has this locale; the other tests check the "C" locale.
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
        GTEST_SKIP() << "no locale with a decimal comma here";
    EXPECT_EQ(distance("\"12.5\""), 12.5);
    EXPECT_EQ(distance("\"12,5\""), std::nullopt);
    std::setlocale(LC_NUMERIC, "C");
}

TEST(Decoding, StringKeepsEveryCharacter)
{
    const auto status = [](const QByteArray &text) {
        return decode<MessageResponse>("{\"status\":" + text + "}").status;
    };
    EXPECT_EQ(status(R"("\u0000a\u0000")"), QString(QChar(0)) + u'a' + QChar(0));
    EXPECT_EQ(status(R"("é😀")"), QString::fromUtf8("é😀"));
    EXPECT_EQ(status(R"("\ud83d\ude00\"\\\/\b\f\n\r\t")"), QString::fromUtf8("😀\"\\/\b\f\n\r\t"));
}

TEST(Decoding, InvalidJsonFails)
{
    for (const QByteArray &json : {QByteArray(),
                                   QByteArray("   "),
                                   QByteArray("{"),
                                   QByteArray("{}{}"),
                                   QByteArray("{} x"),
                                   QByteArray("{\"status\":\"\xff\"}"),
                                   QByteArray("{\"status\":\"\xc3\"}"),
                                   QByteArray("{\"status\":\"\xed\xa0\x80\"}"),
                                   QByteArray("{\"status\":\"\\ud83d\"}"),
                                   QByteArray("{\"other\":\"\xff\"}"),
                                   QByteArray("{\"status\":\"a\nb\"}"),
                                   QByteArray("{'status':1}"),
                                   QByteArray("{\"status\":\"a\",}"),
                                   QByteArray("\0", 1),
                                   QByteArray("{\"status\":\"a\"}\0", 15),
                                   QByteArray("<html><body>Hello</body></html>"),
                                   QByteArray("tru"),
                                   QByteArray("nul"),
                                   QByteArray("{\"other\":tru}"),
                                   QByteArray("{\"other\":01}"),
                                   QByteArray("{\"status\":\"a"),
                                   QByteArray("\xef\xbb\xbf") + "\"a\""})
        EXPECT_THROW(decode<MessageResponse>(json), DecodingError) << json.toHex().toStdString();
}

TEST(Decoding, EveryTruncationFails)
{
    const QByteArray whole = "{" + day + ",\"office\":" + office + ",\"record\":" + recordHead + "}}";
    ASSERT_NO_THROW(decode<TodayResponse>(whole));
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_THROW(decode<TodayResponse>(whole.left(length)), DecodingError) << length;
}

TEST(Decoding, DoesNotReadBeyondTheText)
{
    // Allocated on the heap with exactly the length of the text, so that the address sanitizer detects reads
    // beyond its end.
    const std::string text = R"({"accessToken":"a","refreshToken":"r"})";
    const std::unique_ptr<char[]> exact(new char[text.size()]);
    std::copy(text.begin(), text.end(), exact.get());
    EXPECT_EQ(decode<TokenPair>(std::string_view(exact.get(), text.size())).refreshToken,
              QStringLiteral("r"));
}

} // namespace clockwell
