#include "net/Encoding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace clockwell {

namespace {

struct Inner
{
    QString text;
};
BOOST_DESCRIBE_STRUCT(Inner, (), (text))

struct Everything
{
    double zeta = 0;
    QString alpha;
    std::optional<QString> middle;
    bool flag = false;
    qint64 count = 0;
    std::optional<Inner> inner;
};
BOOST_DESCRIBE_STRUCT(Everything, (), (zeta, alpha, middle, flag, count, inner))

QByteArray encodedText(const QString &text)
{
    return encodeBody(Inner{text});
}

} // namespace

TEST(Encoding, WritesKeysInTheOrderOfTheirDeclaration)
{
    EXPECT_EQ(encodeBody(Everything{12.5, QStringLiteral("a"), QStringLiteral("m"), true, -7,
                                    Inner{QStringLiteral("i")}}),
              R"({"zeta":12.5,"alpha":"a","middle":"m","flag":true,"count":-7,"inner":{"text":"i"}})");
}

TEST(Encoding, OmitsEmptyOptionals)
{
    EXPECT_EQ(encodeBody(Everything{}), R"({"zeta":0.0,"alpha":"","flag":false,"count":0})");
}

TEST(Encoding, WritesAnEmptyOptionalString)
{
    Everything record;
    record.middle = QStringLiteral("");
    EXPECT_EQ(encodeBody(record), R"({"zeta":0.0,"alpha":"","middle":"","flag":false,"count":0})");
}

TEST(Encoding, WritesTextAsUtf8)
{
    EXPECT_EQ(encodedText(QString::fromUtf8("é😀")), QByteArray("{\"text\":\"é😀\"}"));
    EXPECT_EQ(encodedText(QStringLiteral("\"\\\n")), R"({"text":"\"\\\n"})");
    EXPECT_EQ(encodedText(QString(QChar(0))), R"({"text":"\u0000"})");
}

TEST(Encoding, RefusesInvalidUtf16)
{
    EXPECT_THROW(encodedText(QString(QChar(0xd83d))), EncodingError);
    EXPECT_THROW(encodedText(QString(QChar(0xde00)) + u'a'), EncodingError);
}

TEST(Encoding, RefusesNumbersThatAreNotFinite)
{
    for (const double bad :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_THROW(encodeBody(Everything{.zeta = bad, .alpha = {}, .middle = {}, .inner = {}}),
                     EncodingError);
        EXPECT_THROW(shortestDecimal(bad), EncodingError);
    }
}

TEST(Encoding, NumbersParseBackToTheSameValue)
{
    for (const double value :
         {12.9715987, 77.5945627, 0.1, 1.0 / 3, -89.99999999999999, 5e-324, 1.7976931348623157e308}) {
        const QByteArray json = encodeBody(Everything{.zeta = value, .alpha = {}, .middle = {}, .inner = {}});
        const QByteArray number = json.mid(8, json.indexOf(',') - 8);
        EXPECT_EQ(number.toDouble(), value) << number.toStdString();
    }
}

TEST(ShortestDecimal, IsTheShortestTextThatParsesBackToTheSameValue)
{
    EXPECT_EQ(shortestDecimal(12.9715987), QStringLiteral("12.9715987"));
    EXPECT_EQ(shortestDecimal(-77.5), QStringLiteral("-77.5"));
    EXPECT_EQ(shortestDecimal(0.1), QStringLiteral("0.1"));
    EXPECT_EQ(shortestDecimal(0.1 + 0.2), QStringLiteral("0.30000000000000004"));
    EXPECT_EQ(shortestDecimal(180), QStringLiteral("180"));
    EXPECT_EQ(shortestDecimal(0), QStringLiteral("0"));
}

TEST(ShortestDecimal, NeverHasAnExponent)
{
    EXPECT_EQ(shortestDecimal(1e-7), QStringLiteral("0.0000001"));
    EXPECT_EQ(shortestDecimal(1e20), QStringLiteral("100000000000000000000"));
    EXPECT_EQ(shortestDecimal(5e-324).toDouble(), 5e-324);
    EXPECT_EQ(shortestDecimal(std::numeric_limits<double>::max()).toDouble(),
              std::numeric_limits<double>::max());
}

} // namespace clockwell
