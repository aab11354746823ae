#include "net/Decoding.h"
#include "net/Errors.h"

#include <QList>
#include <QThread>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

namespace clockwell {

namespace {

const QByteArray googol = "1" + QByteArray(100, '0');
const QByteArray hundredThousandDigits = QByteArray(100'000, '7');

/// Numbers that are valid JSON but at or beyond the limits of 64-bit integers and doubles.
const QList<QByteArray> bigNumbers{"18446744073709551616",
                                   "-9223372036854775809",
                                   "123456789012345678901234567890",
                                   googol,
                                   "-" + googol,
                                   "1e400",
                                   "-1e400",
                                   "1E+400",
                                   "1e-400",
                                   "1.5e99999999999999999999",
                                   "1e-99999999999999999999",
                                   hundredThousandDigits,
                                   "-" + hundredThousandDigits,
                                   hundredThousandDigits + ".5",
                                   "0." + hundredThousandDigits,
                                   "1e" + hundredThousandDigits};

template <class T>
bool decodes(const QByteArray &json)
{
    try {
        decode<T>(json);
    } catch (const DecodingError &) {
        return false;
    }
    return true;
}

double distance(const QByteArray &number)
{
    return decode<DistanceResponse>(R"({"inside":true,"radiusMeters":1,"distanceMeters":)" + number + "}")
        .distanceMeters;
}

QByteArray recordWith(const QByteArray &field)
{
    return R"({"id":"r","workDate":"2024-05-01","status":"LATE",)" + field + "}";
}

std::optional<double> lenient(const QByteArray &number)
{
    const auto record = decode<AttendanceRecord>(recordWith("\"checkInDistanceMeters\":" + number));
    EXPECT_TRUE(record.checkInDistanceMeters.has_value());
    return record.checkInDistanceMeters.value_or(LenientDouble{1}).value;
}

QByteArray nestedLists(int depth)
{
    return QByteArray(depth, '[') + QByteArray(depth, ']');
}

QByteArray nestedObjects(int depth)
{
    return QByteArray("{\"a\":").repeated(depth) + "1" + QByteArray(depth, '}');
}

/// Decodes on a thread with a small stack of 128 KiB.
std::optional<QString> messageOnSmallStack(const QByteArray &json)
{
    std::optional<QString> message;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        try {
            message = decode<MessageResponse>(json).message;
        } catch (const DecodingError &error) {
            message = error.text();
        }
    }));
    thread->setStackSize(128 * 1024);
    thread->start();
    thread->wait();
    return message;
}

} // namespace

TEST(BigNumber, UnderAnUnknownKeyIsIgnored)
{
    for (const QByteArray &number : bigNumbers) {
        for (const QByteArray &value : {number, "[" + number + "]", "[0," + number + " ,\"]\"]",
                                        "{\"deep\":[{\"er\":\n" + number + "\t}]}"}) {
            const auto pair =
                decode<TokenPair>("{\"accessToken\":\"a\",\"x\":" + value + ",\"refreshToken\":\"r\"}");
            EXPECT_EQ(pair.accessToken, QStringLiteral("a"));
            EXPECT_EQ(pair.refreshToken, QStringLiteral("r"));
        }
    }
}

TEST(BigNumber, InAnErrorBodyKeepsItsMessageAndCode)
{
    for (const QByteArray &number : bigNumbers) {
        const auto body = decode<APIErrorBody>("{\"traceId\":" + number +
                                               R"(,"statusCode":409,"error":"CLOSED","message":"No."})");
        EXPECT_EQ(body.statusCode, 409);
        EXPECT_EQ(body.error, QStringLiteral("CLOSED"));
        EXPECT_EQ(body.message->text, QStringLiteral("No."));
    }
}

TEST(BigNumber, KeepsTheExactValuesOfOtherFields)
{
    const auto record = decode<AttendanceRecord>(
        recordWith(R"("x":1e400,"lateMinutes":9223372036854775807,"earlyLeaveMinutes":-9223372036854775808,)"
                   R"("workingMinutes":5e1,"checkInDistanceMeters":0.1,"checkOutDistanceMeters":"1e3",)"
                   R"("checkInAt":"2024-05-01T09:15:30.123Z")"));
    EXPECT_EQ(record.lateMinutes, std::numeric_limits<qint64>::max());
    EXPECT_EQ(record.earlyLeaveMinutes, std::numeric_limits<qint64>::min());
    EXPECT_EQ(record.workingMinutes, 50);
    EXPECT_EQ(record.checkInDistanceMeters->value, 0.1);
    EXPECT_EQ(record.checkOutDistanceMeters->value, 1000.0);
    EXPECT_TRUE(record.checkInAt);
}

TEST(BigNumber, InADoubleIsTheNearestDouble)
{
    EXPECT_EQ(distance("100000000000000000000"), 1e20);
    EXPECT_EQ(distance("-100000000000000000000"), -1e20);
    EXPECT_EQ(distance("123456789012345678901234567890"), 123456789012345678901234567890.0);
    EXPECT_EQ(distance("18446744073709551616"), 18446744073709551616.0);
    EXPECT_EQ(distance(googol), 1e100);
    EXPECT_EQ(distance("17976931348623157" + QByteArray(292, '0')), std::numeric_limits<double>::max());
    EXPECT_EQ(distance("0." + QByteArray(100'000, '0') + "1"), 0.0);
}

TEST(BigNumber, TooSmallForADoubleIsZero)
{
    EXPECT_EQ(distance("1e-400"), 0.0);
    EXPECT_TRUE(std::signbit(distance("-1e-400")));
    EXPECT_EQ(lenient("1e-400"), 0.0);
    EXPECT_EQ(distance("4.9e-324"), std::numeric_limits<double>::denorm_min());
}

TEST(BigNumber, TooLargeForADoubleFailsTheDouble)
{
    for (const QByteArray &number : {QByteArray("1e400"), QByteArray("-1e400"), hundredThousandDigits,
                                     "17976931348623159" + QByteArray(292, '0')})
        EXPECT_THROW(distance(number), DecodingError) << number.left(20).toStdString();
    EXPECT_FALSE(decodes<PunchResponse>(R"({"type":"IN","inside":true,"distanceMeters":1e400})"));
}

TEST(BigNumber, InALenientDoubleNeverFails)
{
    EXPECT_EQ(lenient("100000000000000000000"), 1e20);
    EXPECT_EQ(lenient("-" + googol), -1e100);
    EXPECT_EQ(lenient("1e400"), std::nullopt);
    EXPECT_EQ(lenient("-1e400"), std::nullopt);
    EXPECT_EQ(lenient(hundredThousandDigits), std::nullopt);
}

TEST(BigNumber, InAnIntegerFails)
{
    for (const QByteArray &number : bigNumbers) {
        const bool nearlyZero = number.startsWith("1e-"); // which the parser rounds to zero
        EXPECT_EQ(decodes<AttendanceRecord>(recordWith("\"lateMinutes\":" + number)), nearlyZero)
            << number.left(40).toStdString();
    }
    EXPECT_FALSE(decodes<AttendanceRecord>(recordWith(R"("lateMinutes":9223372036854775808)")));
    EXPECT_FALSE(decodes<APIErrorBody>(R"({"statusCode":1e400,"message":"No."})"));
}

TEST(BigNumber, InAFieldOfAnotherTypeFails)
{
    for (const char *number : {"123456789012345678901234567890", "1e400"}) {
        const QByteArray value(number);
        EXPECT_FALSE(decodes<MessageResponse>("{\"message\":" + value + "}"));
        EXPECT_FALSE(decodes<MessageResponse>("{\"emailVerified\":" + value + "}"));
        EXPECT_FALSE(decodes<AttendanceRecord>(recordWith("\"checkInAt\":" + value)));
        EXPECT_FALSE(
            decodes<LoginResponse>("{\"accessToken\":\"a\",\"refreshToken\":\"r\",\"user\":" + value + "}"));
    }
}

TEST(BigNumber, InAMessageGivesRequestFailed)
{
    for (const char *message : {"1e400", "123456789012345678901234567890", "[1e400]", R"(["a",1e400])",
                                R"(["a",123456789012345678901234567890])", R"({"a":1e400})"}) {
        const auto body = decode<APIErrorBody>("{\"error\":\"E\",\"message\":" + QByteArray(message) + "}");
        EXPECT_EQ(body.error, QStringLiteral("E")) << message;
        EXPECT_EQ(body.message->text, QStringLiteral("Request failed")) << message;
    }
}

TEST(BigNumber, IsNotARecord)
{
    for (const char *number : {"123456789012345678901234567890", "1e400", " 1e400 ", "[1e400]"}) {
        EXPECT_FALSE(decodes<MessageResponse>(number)) << number;
        EXPECT_FALSE(decodes<APIErrorBody>(number)) << number;
        EXPECT_FALSE(decodes<std::optional<MessageResponse>>(number)) << number;
        EXPECT_FALSE(decodes<QList<AttendanceRecord>>(number)) << number;
    }
}

TEST(BigNumber, InsideAStringIsUnchanged)
{
    const auto body = decode<APIErrorBody>(
        R"({"x":1e400,"message":"\\\"1e400, 123456789012345678901234567890\\","error":"\"[1e400]"})");
    EXPECT_EQ(body.message->text, QStringLiteral("\\\"1e400, 123456789012345678901234567890\\"));
    EXPECT_EQ(body.error, QStringLiteral("\"[1e400]"));
    EXPECT_EQ(
        decode<MessageResponse>(R"({"1e400":1e400,"\\":1e400,"\"message":1e400,"message":"m"})").message,
        QStringLiteral("m"));
}

TEST(BigNumber, DoesNotMakeInvalidJsonAcceptable)
{
    for (const char *value : {"01",
                              "-",
                              "1.",
                              ".5",
                              "1e",
                              "1e+",
                              "+1",
                              "--1",
                              "-01",
                              "0123456789012345678901234567890",
                              "1e4e5",
                              "1.2.3",
                              "1e400x",
                              "1e400.5",
                              "123456789012345678901234567890a",
                              "123456789012345678901234567890.",
                              "1e400 1e400",
                              "[1e400 2]",
                              "[1e400\"a\"]",
                              "[\"a\"1e400]",
                              "[,1e400]",
                              "[1e400,]",
                              "{1e400:1}",
                              "{\"a\":1e400,}",
                              "{\"a\" 1e400}",
                              "[tru1e400]",
                              "[1e400}",
                              "\"a\n1e400\"",
                              "[\\\"1e400\\\"]",
                              "Infinity",
                              "0x1e400",
                              "1e400\v"}) {
        const QByteArray bad(value);
        EXPECT_FALSE(decodes<MessageResponse>("{\"x\":" + bad + "}")) << value;
        EXPECT_FALSE(decodes<MessageResponse>("{\"y\":1e400,\"x\":" + bad + "}")) << value;
        EXPECT_FALSE(decodes<MessageResponse>("{\"x\":" + bad + ",\"y\":1e400}")) << value;
    }
    EXPECT_FALSE(decodes<MessageResponse>(R"({"x":1e400)"));
    EXPECT_FALSE(decodes<MessageResponse>(R"({"x":1e400}})"));
    EXPECT_FALSE(decodes<MessageResponse>(R"({"x":1e400,"message":"a)"));
    EXPECT_FALSE(decodes<MessageResponse>("{\"x\":1e400,\"message\":\"\xff\"}"));
}

TEST(BigNumber, ManyAreDecodedInLinearTime)
{
    // A quadratic algorithm would take minutes.
    const QByteArray list = "[" + QByteArray("1e400,").repeated(100'000) +
                            QByteArray("12345678901234567890123,").repeated(10'000) + "0]";
    EXPECT_EQ(decode<MessageResponse>("{\"x\":" + list + ",\"message\":\"m\"}").message, QStringLiteral("m"));
}

TEST(Depth, OfUnknownKeysHasNoLimit)
{
    for (const int depth : {1, 2, 62, 63, 64, 65, 1000, 100'000, 1'000'000}) {
        for (const QByteArray &deep : {nestedLists(depth), nestedObjects(depth)})
            EXPECT_EQ(messageOnSmallStack("{\"x\":" + deep + ",\"message\":\"m\"}"), QStringLiteral("m"))
                << depth;
    }
}

TEST(Depth, OfAnUnknownKeyInAnErrorBodyKeepsItsMessage)
{
    const auto body =
        decode<APIErrorBody>("{\"trace\":" + nestedLists(100'000) + R"(,"error":"E","message":"No."})");
    EXPECT_EQ(body.error, QStringLiteral("E"));
    EXPECT_EQ(body.message->text, QStringLiteral("No."));
}

TEST(Depth, WithABigNumberAtTheBottomDecodes)
{
    const QByteArray deep = QByteArray(100'000, '[') + "1e400" + QByteArray(100'000, ']');
    EXPECT_EQ(messageOnSmallStack("{\"x\":" + deep + ",\"message\":\"m\"}"), QStringLiteral("m"));
}

TEST(Depth, MayBeThatOfTheLargestReply)
{
    const QByteArray head = R"({"message":"m","x":)";
    const qsizetype replyLimit = 16 * 1024 * 1024;
    const auto depth = static_cast<int>((replyLimit - head.size() - 1) / 2);
    EXPECT_EQ(messageOnSmallStack(head + nestedLists(depth) + "}"), QStringLiteral("m"));
}

TEST(Depth, DoesNotMakeInvalidJsonAcceptable)
{
    for (const int depth : {100, 100'000}) {
        EXPECT_FALSE(decodes<MessageResponse>("{\"x\":" + QByteArray(depth, '[') + "}"));
        EXPECT_FALSE(decodes<MessageResponse>(QByteArray(depth, '[')));
        EXPECT_FALSE(decodes<MessageResponse>(QByteArray("{\"a\":").repeated(depth)));
        EXPECT_FALSE(
            decodes<MessageResponse>("{\"x\":" + QByteArray(depth, '[') + QByteArray(depth + 1, ']') + "}"));
    }
}

TEST(Depth, OfAKnownFieldFailsLikeAnyWrongType)
{
    EXPECT_FALSE(decodes<MessageResponse>("{\"message\":" + nestedLists(1000) + "}"));
    EXPECT_EQ(decode<APIErrorBody>("{\"message\":" + nestedLists(100'000) + "}").message->text,
              QStringLiteral("Request failed"));
    EXPECT_EQ(lenient(nestedObjects(100'000)), std::nullopt);
}

} // namespace clockwell
