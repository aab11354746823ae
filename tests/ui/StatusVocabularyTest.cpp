#include "ui/StatusVocabulary.h"

#include "ui/Palette.h"

#include <gtest/gtest.h>

namespace clockwell {

struct StatusRow
{
    const char16_t *code;
    QRgb color;
    const char16_t *label;
};

class StatusVocabulary : public testing::TestWithParam<StatusRow>
{};

TEST_P(StatusVocabulary, HasTheColorAndLabelOfItsCode)
{
    const QString code = QString::fromUtf16(GetParam().code);
    EXPECT_EQ(statusColor(code), GetParam().color);
    EXPECT_EQ(statusLabel(code), QString::fromUtf16(GetParam().label));
}

INSTANTIATE_TEST_SUITE_P(KnownCodes, StatusVocabulary,
                         testing::Values(StatusRow{u"ON_TIME", 0xff34c759, u"ON TIME"},
                                         StatusRow{u"APPROVED", 0xff34c759, u"APPROVED"},
                                         StatusRow{u"LATE", 0xffff9f0a, u"LATE"},
                                         StatusRow{u"HALF_DAY", 0xffff9f0a, u"HALF DAY"},
                                         StatusRow{u"PENDING", 0xffff9f0a, u"PENDING"},
                                         StatusRow{u"ABSENT", 0xffff453a, u"ABSENT"},
                                         StatusRow{u"MISSING_PUNCH", 0xffff453a, u"MISSING PUNCH"},
                                         StatusRow{u"MISSING_CHECK_OUT", 0xffff453a, u"MISSING CHECK OUT"},
                                         StatusRow{u"REJECTED", 0xffff453a, u"REJECTED"},
                                         StatusRow{u"SUSPENDED", 0xffff453a, u"SUSPENDED"},
                                         StatusRow{u"ON_LEAVE", 0xffbf5af2, u"ON LEAVE"}));

INSTANTIATE_TEST_SUITE_P(
    OtherTexts, StatusVocabulary,
    testing::Values(StatusRow{u"", 0xff5b7ba8, u""}, StatusRow{u"on_time", 0xff5b7ba8, u"on time"},
                    StatusRow{u"On_Time", 0xff5b7ba8, u"On Time"},
                    StatusRow{u"ON_TIME ", 0xff5b7ba8, u"ON TIME "},
                    StatusRow{u" LATE", 0xff5b7ba8, u" LATE"}, StatusRow{u"LATER", 0xff5b7ba8, u"LATER"},
                    StatusRow{u"ON TIME", 0xff5b7ba8, u"ON TIME"},
                    StatusRow{u"ON-TIME", 0xff5b7ba8, u"ON-TIME"}, StatusRow{u"__", 0xff5b7ba8, u"  "},
                    StatusRow{u"_A__B_", 0xff5b7ba8, u" A  B "},
                    StatusRow{u"UNBEKANNT_ÄÖ", 0xff5b7ba8, u"UNBEKANNT ÄÖ"}));

TEST(StatusLabel, LeavesTheCallersTextAlone)
{
    const QString code = QStringLiteral("ON_TIME");
    const QString label = statusLabel(code);
    EXPECT_EQ(code, QStringLiteral("ON_TIME"));
    EXPECT_EQ(label, QStringLiteral("ON TIME"));
}

} // namespace clockwell
