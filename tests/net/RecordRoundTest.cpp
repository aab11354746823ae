#include "net/Decoding.h"
#include "net/Encoding.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace clockwell {

namespace {

using namespace std::chrono;

const QString text = QString::fromUtf8("é😀 \"\\/\n") + QChar(0);
constexpr Instant moment = sys_days(2024y / May / 1) + 9h + 15min + 30s + 123ms;

// Fill a member of each type that records have with a value that differs from its default.

void fill(QString &out)
{
    out = text;
}
void fill(bool &out)
{
    out = true;
}
void fill(double &out)
{
    out = 1.0 / 3;
}
void fill(qint64 &out)
{
    out = std::numeric_limits<qint64>::min();
}
void fill(Instant &out)
{
    out = moment;
}
void fill(LenientDouble &out)
{
    out.value = 35.7;
}
void fill(MessageField &out)
{
    out.text = text;
}
template <class T>
requires boost::describe::has_describe_members<T>::value void fill(T &record);
template <class T>
void fill(std::optional<T> &out)
{
    fill(out.emplace());
}
template <class T>
requires boost::describe::has_describe_members<T>::value void fill(T &record)
{
    boost::mp11::mp_for_each<boost::describe::describe_members<T, boost::describe::mod_public>>(
        [&](auto member) { fill(record.*member.pointer); });
}

template <class T>
QSet<QString> keysOf(const T &record)
{
    const QStringList keys = QJsonDocument::fromJson(encodeBody(record)).object().keys();
    return QSet<QString>(keys.begin(), keys.end());
}

template <class T>
class RecordRound : public testing::Test
{
public:
    static T full()
    {
        T record{};
        fill(record);
        return record;
    }
    /// The names of the record's members, with or without the optional ones.
    static QSet<QString> names(bool withOptionals)
    {
        QSet<QString> names;
        boost::mp11::mp_for_each<boost::describe::describe_members<T, boost::describe::mod_public>>(
            [&](auto member) {
                using Member = std::remove_cvref_t<decltype(std::declval<T>().*member.pointer)>;
                constexpr bool optional = requires(Member value)
                {
                    value.has_value();
                };
                if (withOptionals || !optional)
                    names.insert(QString::fromLatin1(member.name));
            });
        return names;
    }
};

using Records = testing::Types<TokenPair, LoginResponse, AuthUser, SignupResponse, MessageResponse,
                               TodayResponse, OfficeBlock, AttendanceRecord, DistanceResponse, PunchResponse,
                               MonthlySummary, APIErrorBody>;
TYPED_TEST_SUITE(RecordRound, Records);

AttendanceRecord withDistance(LenientDouble distance)
{
    AttendanceRecord record;
    record.checkInDistanceMeters = distance;
    return record;
}

AttendanceRecord roundTrip(const AttendanceRecord &record)
{
    return decode<AttendanceRecord>(encodeBody(record));
}

} // namespace

TYPED_TEST(RecordRound, WithAllFieldsDecodesToAnEqualRecord)
{
    const TypeParam record = TestFixture::full();
    EXPECT_FALSE(record == TypeParam{});
    EXPECT_EQ(keysOf(record), TestFixture::names(true));
    EXPECT_TRUE(decode<TypeParam>(encodeBody(record)) == record) << encodeBody(record).toStdString();
}

TYPED_TEST(RecordRound, WithoutOptionalFieldsDecodesToAnEqualRecord)
{
    const TypeParam record{};
    EXPECT_EQ(keysOf(record), TestFixture::names(false));
    EXPECT_TRUE(decode<TypeParam>(encodeBody(record)) == record) << encodeBody(record).toStdString();
}

TEST(RecordsAsJson, KeepTheOrderOfKeysAndNestedRecords)
{
    TodayResponse today{
        .workDate = QStringLiteral("2024-05-01"),
        .open = true,
        .office = {QStringLiteral("HQ"), QStringLiteral("09:00"), QStringLiteral("18:00"), 150},
        .record = AttendanceRecord{},
        .canCheckIn = false,
        .canCheckOut = true};
    today.record->checkInAt = moment;
    EXPECT_EQ(
        encodeBody(today),
        R"({"workDate":"2024-05-01","open":true,"office":{"name":"HQ","checkInTime":"09:00","checkOutTime":"18:00",)"
        R"("radiusMeters":150},"record":{"id":"","workDate":"","status":"","checkInAt":"2024-05-01T09:15:30.123Z"},)"
        R"("canCheckIn":false,"canCheckOut":true})");
}

TEST(RecordsAsJson, WriteWrapperTypesAsPlainValues)
{
    EXPECT_EQ(encodeBody(APIErrorBody{
                  .statusCode = {}, .error = {}, .message = MessageField{QStringLiteral("No.")}}),
              R"({"message":"No."})");
    EXPECT_EQ(encodeBody(withDistance({12.5})),
              R"({"id":"","workDate":"","status":"","checkInDistanceMeters":12.5})");
    EXPECT_EQ(encodeBody(withDistance({})),
              R"({"id":"","workDate":"","status":"","checkInDistanceMeters":null})");
}

TEST(RecordsAsJson, KeepEveryDistance)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {0.0, 0.1, -1e300, 5e-324, 1e20, infinity, -infinity})
        EXPECT_EQ(roundTrip(withDistance({value})).checkInDistanceMeters, LenientDouble{value}) << value;
    const AttendanceRecord none = roundTrip(withDistance({std::numeric_limits<double>::quiet_NaN()}));
    EXPECT_TRUE(std::isnan(none.checkInDistanceMeters->value.value_or(0)));
    // A distance without a value is encoded as null, which decodes to an empty optional.
    EXPECT_EQ(roundTrip(withDistance({})), AttendanceRecord{});
}

TEST(RecordsAsJson, KeepEveryDateThatTheDateRuleAccepts)
{
    for (const Instant at : {Instant{}, Instant(-1ms), moment, Instant(sys_days(0y / January / 1)),
                             Instant(sys_days(9999y / December / 31) + 23h + 59min + 59s + 999ms),
                             Instant(sys_days(2024y / February / 29) + 7ms)}) {
        AttendanceRecord record;
        record.checkInAt = at;
        EXPECT_EQ(roundTrip(record).checkInAt, at) << at.time_since_epoch().count();
    }
    for (const Instant beyond :
         {Instant(sys_days(0y / January / 1) - 1ms), Instant(sys_days(10000y / January / 1))}) {
        PunchResponse punch;
        punch.checkOutAt = beyond;
        EXPECT_THROW(encodeBody(punch), EncodingError);
    }
}

} // namespace clockwell
