#include "HomeServices.h"
#include "attendance/SummaryViewModel.h"
#include "support/screen/QmlStage.h"
#include "ui/Theme.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::spinUntil;

const char *const path = "/api/attendance/me/summary";

QByteArray month(const QByteArray &name, int present = 18, int total = 9160)
{
    return R"({"month":")" + name + R"(","presentDays":)" + QByteArray::number(present) +
           R"(,"lateDays":3,"totalLateMinutes":47,"absentDays":1,"leaveDays":2,"halfDays":4,"totalWorkingMinutes":)" +
           QByteArray::number(total) + "}";
}

class SummaryViewModelTest : public ::testing::Test
{
protected:
    bool load(const QByteArray &reply, int status = 200)
    {
        services.server.expect("GET", path).reply(status, reply);
        const auto before = services.server.requests().size();
        if (model->isShown())
            model->refresh();
        model->setShown(true);
        return spinUntil([&] { return services.server.requests().size() > before && !model->isLoading(); });
    }
    QString askedMonth(int request = 0) const
    {
        return services.server.requests().at(request).query.value(u"month"_s);
    }
    std::unique_ptr<SummaryViewModel> make(const QByteArray &locale, const QByteArray &zone)
    {
        auto made = std::make_unique<SummaryViewModel>([this] { return now; }, DateFormats(locale, zone));
        made->setAttendance(services.store.get());
        return made;
    }
    QString tile(int row, SummaryTiles::Role role) const
    {
        return model->tiles()->data(model->tiles()->index(row), role).toString();
    }

    DateFormats::Instant now = sys_days(2025y / March / 31) + 20h;
    test::HomeServices services;
    std::unique_ptr<SummaryViewModel> model = make("en_US", "UTC");
};

TEST_F(SummaryViewModelTest, LoadsTheCurrentMonthOnceAndOnEachRefresh)
{
    ASSERT_TRUE(load(month("2025-03")));
    EXPECT_EQ(askedMonth(), u"2025-03"_s);
    model->setShown(false);
    model->setShown(true);
    EXPECT_FALSE(model->isLoading());
    now += 24h;
    ASSERT_TRUE(load(month("2025-04")));
    EXPECT_EQ(askedMonth(1), u"2025-04"_s);
    EXPECT_EQ(model->monthTitle(), u"April 2025"_s);
    EXPECT_EQ(services.server.requests().size(), 2);
}

TEST_F(SummaryViewModelTest, CurrentMonthIsThatOfTheDevicesZone)
{
    model = make("en_NZ", "Pacific/Chatham"); // 13:45 ahead of UTC
    ASSERT_TRUE(load(month("2025-04")));
    EXPECT_EQ(askedMonth(), u"2025-04"_s);
}

TEST_F(SummaryViewModelTest, MonthIsFormattedInTheDevicesCalendar)
{
    model = make("th_TH", "Asia/Bangkok");
    ASSERT_TRUE(load(month("2025-03")));
    EXPECT_EQ(askedMonth(), DateFormats("th_TH", "Asia/Bangkok").monthKey(now));
    EXPECT_EQ(model->monthTitle(), DateFormats("th_TH", "Asia/Bangkok").month(u"2025-03"_s));
}

TEST_F(SummaryViewModelTest, InvalidMonthIsShownAsReceived)
{
    ASSERT_TRUE(load(month("03/2025")));
    EXPECT_EQ(model->monthTitle(), u"03/2025"_s);
}

TEST_F(SummaryViewModelTest, TotalIsHoursAndMinutesAlsoForZero)
{
    ASSERT_TRUE(load(month("2025-03")));
    EXPECT_EQ(model->totalWorked(), u"152h 40m"_s);
    EXPECT_EQ(model->totalSpoken(), u"Total worked, 152h 40m this month"_s);
    ASSERT_TRUE(load(month("2025-03", 0, 0)));
    EXPECT_EQ(model->totalWorked(), u"0h 0m"_s);
}

TEST_F(SummaryViewModelTest, TilesAreInTheirFixedOrder)
{
    ASSERT_TRUE(load(month("2025-03")));
    const QStringList spoken{u"Present, 18"_s, u"Late, 3"_s,      u"Absent, 1"_s,
                             u"On leave, 2"_s, u"Half days, 4"_s, u"Late (min), 47"_s};
    const QStringList symbols{u"checkmark.circle.fill"_s,  u"clock.badge.exclamationmark.fill"_s,
                              u"xmark.circle.fill"_s,      u"airplane"_s,
                              u"circle.lefthalf.filled"_s, u"hourglass"_s};
    const QStringList tints{u"#34c759"_s, u"#ff9f0a"_s, u"#ff453a"_s,
                            u"#bf5af2"_s, u"#ff9f0a"_s, u"#ff9f0a"_s};
    ASSERT_EQ(model->tiles()->rowCount(), 6);
    for (int row = 0; row < 6; ++row) {
        EXPECT_EQ(tile(row, SummaryTiles::SpokenRole), spoken.at(row));
        EXPECT_EQ(tile(row, SummaryTiles::SymbolRole), symbols.at(row));
        EXPECT_EQ(tile(row, SummaryTiles::TintRole), tints.at(row));
    }
}

TEST_F(SummaryViewModelTest, FailedLoadKeepsTheContent)
{
    ASSERT_TRUE(load("{}", 500));
    EXPECT_FALSE(model->isPresent());
    EXPECT_EQ(tile(0, SummaryTiles::CountRole), QString());
    EXPECT_EQ(tile(0, SummaryTiles::SpokenRole), QString());
    ASSERT_TRUE(load(month("2025-03")));
    ASSERT_TRUE(load("{}", 500));
    EXPECT_EQ(model->monthTitle(), u"March 2025"_s);
    EXPECT_FALSE(services.store->banner());
}

TEST_F(SummaryViewModelTest, NullResponseShowsThePlaceholder)
{
    ASSERT_TRUE(load(month("2025-03")));
    ASSERT_TRUE(load("null"));
    EXPECT_FALSE(model->isPresent());
    EXPECT_EQ(model->monthTitle(), QString());
}

class SummaryViewTest : public ::testing::Test
{
protected:
    void open(QSize size = QSize(390, 844), double textScale = 1)
    {
        const QVariantMap properties{{u"attendance"_s, QVariant::fromValue(services.store.get())}};
        stage = std::make_unique<test::QmlStage>(u"Clockwell/Attendance/SummaryView.qml"_s, properties, size);
        Theme::of(*stage->view().engine())->setTextScale(textScale);
    }
    void open(const QByteArray &reply, QSize size = QSize(390, 844), double textScale = 1)
    {
        services.server.expect("GET", path).reply(200, reply);
        open(size, textScale);
        ASSERT_FALSE(screen().waitForPrefix(u"Present, "_s).isEmpty()) << screen().dump().toStdString();
    }
    test::ScreenDriver &screen() { return stage->screen(); }
    /// Whether screen readers find only the title and the refresh control.
    bool isPlaceholder()
    {
        return std::ranges::all_of(
            screen().elements(),
            [](const auto &element) {
                return element.name == u"Summary" || element.name.startsWith(u"Refresh");
            });
    }
    void pull()
    {
        const QPoint from(195, 200);
        QTest::mousePress(&stage->view(), Qt::LeftButton, {}, from);
        for (int i = 1; i <= 10; ++i)
            QTest::mouseMove(&stage->view(), from + QPoint(0, 40 * i), 10);
        QTest::mouseRelease(&stage->view(), Qt::LeftButton, {}, from + QPoint(0, 400));
    }

    test::HomeServices services;
    std::unique_ptr<test::QmlStage> stage;
};

TEST_F(SummaryViewTest, ShowsTheMonthItsTilesAndItsTotal)
{
    open(month("2025-03"));
    for (const QString &text :
         {u"Summary"_s, u"March 2025"_s, u"Present, 18"_s, u"Late, 3"_s, u"Absent, 1"_s, u"On leave, 2"_s,
          u"Half days, 4"_s, u"Late (min), 47"_s, u"Total worked, 152h 40m this month"_s})
        EXPECT_TRUE(screen().shows(text)) << text.toStdString() << "\n" << screen().dump().toStdString();
    EXPECT_FALSE(screen().shows(u"18"_s)) << "a tile is one element";
    EXPECT_FALSE(screen().shows(u"TOTAL WORKED"_s));
}

TEST_F(SummaryViewTest, TwoTilesAreInARow)
{
    open(month("2025-03"));
    const QRect present = screen().find(u"Present, 18"_s)->rect;
    const QRect late = screen().find(u"Late, 3"_s)->rect;
    const QRect absent = screen().find(u"Absent, 1"_s)->rect;
    EXPECT_EQ(present.top(), late.top());
    EXPECT_EQ(late.left() - present.right() - 1, 12);
    EXPECT_EQ(absent.top() - present.bottom() - 1, 12);
    EXPECT_EQ(present.size(), late.size());
}

TEST_F(SummaryViewTest, PlaceholderBeforeTheFirstResponseIsHiddenFromScreenReaders)
{
    services.server.expect("GET", path).after(1s).reply(200, month("2025-03"));
    open();
    EXPECT_TRUE(screen().shows(u"Summary"_s));
    EXPECT_TRUE(isPlaceholder()) << screen().dump().toStdString();
    const QImage placeholder = stage->view().grabWindow();
    EXPECT_NE(placeholder.pixel(60, 160), placeholder.pixel(5, 160)); // a card
    const qreal height =
        stage->root()->findChild<QQuickItem *>(u"page"_s)->property("contentHeight").toReal();
    ASSERT_FALSE(screen().waitForPrefix(u"Total worked, "_s).isEmpty());
    EXPECT_EQ(stage->root()->findChild<QQuickItem *>(u"page"_s)->property("contentHeight").toReal(), height);
}

TEST_F(SummaryViewTest, TitleOfAnInvalidMonthIsShownAsReceived)
{
    open(month("03/2025"));
    EXPECT_TRUE(screen().shows(u"03/2025"_s)) << screen().dump().toStdString();
}

TEST_F(SummaryViewTest, TotalWithoutWorkIsZeroHoursAndMinutes)
{
    open(month("2025-03", 0, 0));
    EXPECT_TRUE(screen().shows(u"Total worked, 0h 0m this month"_s)) << screen().dump().toStdString();
    EXPECT_TRUE(screen().shows(u"Present, 0"_s));
}

TEST_F(SummaryViewTest, FailedFirstLoadKeepsThePlaceholderWithoutABanner)
{
    services.server.expect("GET", path).after(1s).reply(500, R"({"message":"Down"})");
    open();
    auto *disc = stage->root()->findChild<QQuickItem *>(u"disc"_s);
    ASSERT_TRUE(disc->isVisible());
    ASSERT_TRUE(spinUntil([&] { return !disc->isVisible(); }));
    EXPECT_TRUE(isPlaceholder()) << screen().dump().toStdString();
    EXPECT_FALSE(services.store->banner());
}

TEST_F(SummaryViewTest, FailedReloadKeepsTheNumbers)
{
    open(month("2025-03"));
    services.server.expect("GET", path).after(1s).reply(503, "{}");
    screen().key(Qt::Key_F5);
    ASSERT_TRUE(screen().waitFor(u"Refreshing"_s));
    ASSERT_TRUE(screen().waitFor(u"Refresh"_s));
    EXPECT_TRUE(screen().shows(u"March 2025"_s));
    EXPECT_TRUE(screen().shows(u"Present, 18"_s));
}

TEST_F(SummaryViewTest, PullingReloadsButReturningDoesNot)
{
    open(month("2025-03"));
    stage->root()->setVisible(false);
    stage->root()->setVisible(true);
    services.server.expect("GET", path).reply(200, month("2025-03", 19));
    pull();
    EXPECT_TRUE(screen().waitFor(u"Present, 19"_s));
    EXPECT_EQ(services.server.requests().size(), 2);
}

TEST_F(SummaryViewTest, LargeTextUsesOneColumn)
{
    open(month("2025-03", 18000, 1999999), QSize(320, 568), 2);
    QTest::qWait(50);
    const auto present = screen().find(u"Present, 18000"_s);
    ASSERT_TRUE(present) << screen().dump().toStdString();
    EXPECT_EQ(present->rect.width(), 280);
    stage->root()->findChild<QQuickItem *>(u"page"_s)->setProperty("contentY", 1200);
    EXPECT_TRUE(screen().waitFor(u"Total worked, 33333h 19m this month"_s)) << screen().dump().toStdString();
}

TEST_F(SummaryViewTest, EveryTabStopHasAName)
{
    open(month("2025-03"));
    for (int i = 0; i < 3; ++i) {
        screen().key(Qt::Key_Tab);
        auto *focused = stage->view().activeFocusItem();
        ASSERT_NE(focused, nullptr);
        auto *interface = QAccessible::queryAccessibleInterface(focused);
        ASSERT_NE(interface, nullptr);
        EXPECT_FALSE(interface->text(QAccessible::Name).isEmpty()) << i;
    }
}

TEST_F(SummaryViewTest, DestroyingTheScreenDuringARequestIsHarmless)
{
    services.server.expect("GET", path).after(1s).reply(200, month("2025-03"));
    open();
    ASSERT_TRUE(services.server.waitForRequests(1));
    stage.reset();
    EXPECT_TRUE(spinUntil([&] { return services.store->summary().has_value(); }));
}

} // namespace
} // namespace clockwell
