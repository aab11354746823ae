#include "HomeServices.h"
#include "attendance/DateFormats.h"
#include "support/screen/QmlStage.h"
#include "ui/Theme.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::spinUntil;

const char *const path = "/api/attendance/me";
const QString emptyText = u"No attendance records yet"_s;

QByteArray day(int number, const QByteArray &rest = R"("status":"ON_TIME")")
{
    return R"({"id":"d)" + QByteArray::number(number) + R"(","workDate":"2025-03-)" +
           QByteArray::number(number).rightJustified(2, '0') + R"(",)" + rest + "}";
}

/// Days from the last to the first, in the order of the server.
QByteArray days(int last, int first = 1)
{
    QByteArrayList list;
    for (int number = last; number >= first; --number)
        list.append(day(number));
    return "[" + list.join(',') + "]";
}

class HistoryViewTest : public ::testing::Test
{
protected:
    void expect(const QByteArray &reply, int status = 200)
    {
        services.server.expect("GET", path).reply(status, reply);
    }
    void open(QSize size = QSize(390, 844))
    {
        const QVariantMap properties{{u"attendance"_s, QVariant::fromValue(services.store.get())}};
        stage = std::make_unique<test::QmlStage>(u"Clockwell/Attendance/HistoryView.qml"_s, properties, size);
        list = stage->root()->findChild<QQuickItem *>(u"days"_s);
        ASSERT_NE(list, nullptr);
    }
    void open(const QByteArray &reply, QSize size = QSize(390, 844))
    {
        expect(reply);
        open(size);
        ASSERT_TRUE(spinUntil([&] { return isIdle(1) && listed() == services.store->history().size(); }));
    }
    /// Number of rows in the list, visible or not.
    int listed() const { return list->property("count").toInt(); }
    /// Whether that many requests have arrived and none is running.
    bool isIdle(int requests) const
    {
        return services.server.requests().size() >= requests &&
               !stage->root()->findChild<QQuickItem *>(u"disc"_s)->isVisible();
    }
    bool settle(int requests)
    {
        return spinUntil([&] { return isIdle(requests); });
    }
    test::ScreenDriver &screen() { return stage->screen(); }
    QStringList rows()
    {
        QList<test::ScreenDriver::Element> found;
        for (const auto &element : screen().elements())
            if (element.role == QAccessible::ListItem)
                found.append(element);
        std::ranges::sort(found, {}, [](const auto &row) { return row.rect.y(); });
        QStringList names;
        for (const auto &row : found)
            names.append(row.name.section(u", "_s, 1, 1));
        return names;
    }
    /// The visible text items of the rows, from top to bottom.
    QList<QQuickItem *> labels() const
    {
        QList<QQuickItem *> found;
        QList<QQuickItem *> items{list->property("contentItem").value<QQuickItem *>()};
        while (!items.isEmpty()) {
            auto *item = items.takeFirst();
            items.append(item->childItems());
            if (item->inherits("QQuickText") && item->isVisible())
                found.append(item);
        }
        std::ranges::sort(found, {}, [](auto *item) { return item->mapToScene({}).y(); });
        return found;
    }
    QStringList drawn() const
    {
        QStringList texts;
        for (const auto *label : labels())
            texts.append(label->property("text").toString());
        return texts;
    }
    QColor colorOf(const QString &text) const
    {
        for (const auto *label : labels())
            if (label->property("text").toString() == text)
                return label->property("color").value<QColor>();
        return {};
    }
    /// Opens with one day and waits for its row.
    void openDay(const QByteArray &rest)
    {
        open("[" + day(3, rest) + "]");
        ASSERT_TRUE(spinUntil([&] { return rows().size() == 1; })) << dump();
    }
    std::string dump() { return screen().dump().toStdString(); }
    void pull()
    {
        const QPoint from(195, 200);
        QTest::mousePress(&stage->view(), Qt::LeftButton, {}, from);
        for (int i = 1; i <= 10; ++i)
            QTest::mouseMove(&stage->view(), from + QPoint(0, 40 * i), 10);
        QTest::mouseRelease(&stage->view(), Qt::LeftButton, {}, from + QPoint(0, 400));
    }
    qreal contentY() const { return list->property("contentY").toReal(); }

    test::HomeServices services;
    std::unique_ptr<test::QmlStage> stage;
    QQuickItem *list = nullptr;
};

TEST_F(HistoryViewTest, ShowsTheDaysInTheServersOrder)
{
    open("[" + day(3) + "," + day(7) + "," + day(1) + "]");
    EXPECT_TRUE(screen().shows(u"History"_s));
    ASSERT_TRUE(spinUntil([&] { return rows().size() == 3; })) << dump();
    EXPECT_EQ(rows(), QStringList({u"3 Mar 2025"_s, u"7 Mar 2025"_s, u"1 Mar 2025"_s}));
    EXPECT_FALSE(screen().shows(emptyText));
}

TEST_F(HistoryViewTest, RowIsOneElementWithAllTexts)
{
    open("[" + day(3, R"("status":"MISSING_CHECK_OUT","checkInAt":"2025-03-03T09:04:00Z","lateMinutes":4)") +
         "]");
    const QString in = DateFormats().time(DateFormats::Instant(1740992640s));
    const QString name =
        u"Mon, 3 Mar 2025, MISSING CHECK OUT, check-in "_s + in + u", check-out —, Late 4m"_s;
    ASSERT_TRUE(screen().waitFor(name)) << dump();
    EXPECT_EQ(screen().find(name)->role, QAccessible::ListItem);
    EXPECT_FALSE(screen().shows(u"Late 4m"_s)) << "read twice\n" << dump();
    EXPECT_FALSE(screen().shows(u"MISSING CHECK OUT"_s));
}

TEST_F(HistoryViewTest, LatenessWithoutWorkIsShownAsAWarning)
{
    openDay(R"("status":"LATE","workingMinutes":0,"lateMinutes":15)");
    EXPECT_TRUE(drawn().contains(u"Late 15m"_s)) << drawn().join(u'|').toStdString();
    EXPECT_EQ(colorOf(u"Late 15m"_s), Theme::of(*stage->view().engine())->warning());
}

TEST_F(HistoryViewTest, WorkWithoutLatenessShowsTheWork)
{
    openDay(R"("status":"ON_TIME","workingMinutes":61)");
    EXPECT_TRUE(drawn().contains(u"Worked 1h 1m"_s)) << drawn().join(u'|').toStdString();
    EXPECT_EQ(colorOf(u"Worked 1h 1m"_s), Theme::of(*stage->view().engine())->textMuted());
}

TEST_F(HistoryViewTest, WorkAndLatenessShareALine)
{
    openDay(R"("status":"LATE","workingMinutes":492,"lateMinutes":7)");
    const QString line = u"Worked 8h 12m · late 7m"_s;
    EXPECT_TRUE(drawn().contains(line)) << drawn().join(u'|').toStdString();
    EXPECT_EQ(colorOf(line), Theme::of(*stage->view().engine())->textMuted());
}

TEST_F(HistoryViewTest, WithoutWorkAndLatenessThereIsNoLine)
{
    openDay(R"("status":"ABSENT")");
    QStringList texts = drawn();
    texts.sort();
    EXPECT_EQ(texts, QStringList({u"ABSENT"_s, u"History"_s, u"Mon, 3 Mar 2025"_s, u"—"_s, u"—"_s}));
    EXPECT_EQ(colorOf(u"Mon, 3 Mar 2025"_s), QColor(Qt::white));
}

TEST_F(HistoryViewTest, InvalidDateIsShownAsReceived)
{
    open(R"([{"id":"1","workDate":"2025-13-01","status":"on_time"}])");
    ASSERT_TRUE(spinUntil([&] { return !rows().isEmpty(); }));
    EXPECT_TRUE(drawn().contains(u"2025-13-01"_s));
    EXPECT_TRUE(drawn().contains(u"on time"_s));
    EXPECT_EQ(colorOf(u"on time"_s), Theme::of(*stage->view().engine())->textMuted());
}

TEST_F(HistoryViewTest, EmptyResponseShowsTheEmptyState)
{
    open("[]");
    EXPECT_TRUE(screen().waitFor(emptyText));
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(HistoryViewTest, FailedFirstLoadShowsTheEmptyState)
{
    expect(R"({"message":"Down"})", 500);
    open();
    ASSERT_TRUE(settle(1));
    EXPECT_TRUE(screen().shows(emptyText));
    EXPECT_FALSE(screen().shows(u"Down"_s));
    EXPECT_FALSE(services.store->banner());
}

TEST_F(HistoryViewTest, FirstLoadShowsASpinnerAndMovesNothing)
{
    services.server.expect("GET", path).after(1s).reply(200, days(3));
    open();
    auto *disc = stage->root()->findChild<QQuickItem *>(u"disc"_s);
    EXPECT_TRUE(disc->isVisible());
    EXPECT_TRUE(screen().shows(emptyText));
    const QRect title = screen().find(u"History"_s, QAccessible::StaticText)->rect;
    ASSERT_TRUE(settle(1));
    EXPECT_TRUE(spinUntil([&] { return rows().size() == 3; }));
    EXPECT_EQ(screen().find(u"History"_s, QAccessible::StaticText)->rect, title);
}

TEST_F(HistoryViewTest, SampleRowIsInvisibleAndSendsNoRequest)
{
    services.server.expect("GET", path).after(1s).reply(200, days(2));
    open();
    ASSERT_TRUE(spinUntil([&] { return list->property("model").value<QObject *>() != nullptr; }));
    const QImage blank = stage->view().grabWindow().copy(0, 80, 390, 300);
    EXPECT_EQ(blank, QImage(blank).copy().mirrored(true, false)) << "something is visible";
    EXPECT_EQ(rows().size(), 0) << dump();
    ASSERT_TRUE(settle(1));
    EXPECT_TRUE(spinUntil([&] { return rows().size() == 2; })) << dump();
    EXPECT_EQ(services.server.requests().size(), 1);
}

TEST_F(HistoryViewTest, ReturningToTheTabDoesNotReload)
{
    open(days(3));
    stage->root()->setVisible(false);
    stage->root()->setVisible(true);
    QTest::qWait(100);
    EXPECT_EQ(services.server.requests().size(), 1);
}

TEST_F(HistoryViewTest, ReturningAfterAFailedLoadDoesNotReloadEither)
{
    expect("{}", 500);
    open();
    ASSERT_TRUE(settle(1));
    stage->root()->setVisible(false);
    stage->root()->setVisible(true);
    QTest::qWait(100);
    EXPECT_EQ(services.server.requests().size(), 1);
}

TEST_F(HistoryViewTest, PullingReloadsEachTime)
{
    open(days(3));
    expect(days(4));
    pull();
    ASSERT_TRUE(settle(2));
    EXPECT_TRUE(spinUntil([&] { return rows().size() == 4; })) << dump();
    expect(days(5));
    pull();
    ASSERT_TRUE(settle(3));
    EXPECT_TRUE(spinUntil([&] { return rows().size() == 5; }));
}

TEST_F(HistoryViewTest, PullingAnEmptyListReloads)
{
    open("[]");
    expect(days(2));
    pull();
    ASSERT_TRUE(settle(2));
    EXPECT_TRUE(spinUntil([&] { return rows().size() == 2; })) << dump();
    EXPECT_FALSE(screen().shows(emptyText));
}

TEST_F(HistoryViewTest, FailedReloadKeepsTheDays)
{
    open(days(3));
    expect("{}", 503);
    screen().key(Qt::Key_F5);
    ASSERT_TRUE(settle(2));
    EXPECT_TRUE(spinUntil([&] { return rows().size() == 3; })) << rows().size();
}

TEST_F(HistoryViewTest, ReloadKeepsTheScrollPositionAndTheRows)
{
    open(days(31, 2));
    list->setProperty("contentY", 900);
    QTest::qWait(50);
    const QStringList before = rows();
    ASSERT_FALSE(before.isEmpty());
    expect(days(31, 1));
    screen().key(Qt::Key_F5);
    ASSERT_TRUE(settle(2));
    QTest::qWait(50);
    EXPECT_EQ(contentY(), 900);
    EXPECT_EQ(rows(), before);
}

TEST_F(HistoryViewTest, NewDayAppearsAtTheTop)
{
    open(days(30));
    ASSERT_TRUE(spinUntil([&] { return !rows().isEmpty(); }));
    expect(days(31));
    pull();
    ASSERT_TRUE(settle(2));
    EXPECT_TRUE(spinUntil([&] { return rows().value(0) == u"31 Mar 2025"_s; })) << dump();
    QTest::qWait(500);
    EXPECT_EQ(rows().value(0), u"31 Mar 2025"_s);
    EXPECT_TRUE(screen().shows(u"History"_s));
}

TEST_F(HistoryViewTest, RecordsWithEqualIdsAreSeparateRows)
{
    open("[" + day(1) + "," + day(1) + "," + day(1) + "]");
    EXPECT_TRUE(spinUntil([&] { return rows().size() == 3; })) << dump();
}

TEST_F(HistoryViewTest, RecordsWithoutAnIdAreShown)
{
    open(R"([{"id":"","workDate":"2025-03-09","status":""},{"id":"","workDate":"x","status":"LATE"}])");
    EXPECT_TRUE(spinUntil([&] { return rows().size() == 2; })) << dump();
}

TEST_F(HistoryViewTest, EmptyResponseAfterOthersShowsTheEmptyState)
{
    open(days(20));
    expect("[]");
    screen().key(Qt::Key_F5);
    ASSERT_TRUE(settle(2));
    EXPECT_TRUE(screen().waitFor(emptyText));
    EXPECT_TRUE(spinUntil([&] { return rows().isEmpty(); })) << dump();
}

TEST_F(HistoryViewTest, PooledRowsAreHiddenFromScreenReaders)
{
    open(days(31));
    ASSERT_TRUE(spinUntil([&] { return rows().size() > 5; })) << dump();
    const auto before = rows().size();
    for (int y = 0; y < 2000; y += 40) {
        list->setProperty("contentY", y);
        QTest::qWait(5);
        ASSERT_LE(rows().size(), before + 4) << dump();
    }
    QStringList once = rows();
    once.removeDuplicates();
    EXPECT_EQ(once, rows());
}

TEST_F(HistoryViewTest, RightToLeftScriptsKeepTheLayoutOfRows)
{
    const QByteArray locale = qgetenv("LC_ALL");
    qputenv("LC_ALL", "ar_EG.UTF-8");
    open(days(1));
    EXPECT_TRUE(spinUntil([&] { return !rows().isEmpty(); }));
    qputenv("LC_ALL", locale);
    int rightToLeft = 0;
    QList<QQuickItem *> items{list};
    while (!items.isEmpty()) {
        const auto *item = items.takeFirst();
        items.append(item->childItems());
        const QString text = item->property("effectiveHorizontalAlignment").isValid() && item->isVisible()
                                 ? item->property("text").toString()
                                 : QString();
        if (text.isRightToLeft()) {
            ++rightToLeft;
            EXPECT_EQ(item->property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft)
                << text.toStdString();
        }
    }
    EXPECT_GT(rightToLeft, 0);
}

TEST_F(HistoryViewTest, TimeAndDashAreAlignedInEveryScript)
{
    const QByteArray locale = qgetenv("LC_ALL");
    qputenv("LC_ALL", "th_TH.UTF-8");
    openDay(R"("status":"LATE","checkInAt":"2025-03-03T09:50:00Z")");
    qputenv("LC_ALL", locale);
    QList<qreal> middles;
    for (auto *label : labels()) {
        const QString text = label->property("text").toString();
        if (text == u"—" || text.startsWith(u"9:"))
            middles.append(label->mapToScene({0, label->height() / 2}).y());
    }
    ASSERT_EQ(middles.size(), 2) << drawn().join(u'|').toStdString();
    EXPECT_NEAR(middles[0], middles[1], 0.5);
}

TEST_F(HistoryViewTest, KeysScroll)
{
    open(days(31));
    const qreal top = contentY();
    list->forceActiveFocus();
    screen().key(Qt::Key_Down);
    EXPECT_TRUE(spinUntil([&] { return contentY() > top + 50; }));
}

TEST_F(HistoryViewTest, DestroyingTheScreenDuringARequestIsHarmless)
{
    services.server.expect("GET", path).after(1s).reply(200, days(3));
    open();
    ASSERT_TRUE(services.server.waitForRequests(1));
    stage.reset();
    EXPECT_TRUE(spinUntil([&] { return services.store->history().size() == 3; }));
}

struct Format
{
    QSize size;
    double textScale;
};

class HistoryViewFormats : public HistoryViewTest, public ::testing::WithParamInterface<Format>
{};

TEST_P(HistoryViewFormats, RowsFitTheScreenAndDoNotOverlap)
{
    open("[" +
             day(3, R"("status":"MISSING_CHECK_OUT","checkInAt":"2025-03-03T12:42:00Z","lateMinutes":1200)") +
             "," + day(2, R"("status":"ON_TIME","workingMinutes":1439,"lateMinutes":1439)") + "]",
         GetParam().size);
    Theme::of(*stage->view().engine())->setTextScale(GetParam().textScale);
    ASSERT_TRUE(spinUntil([&] { return rows().size() == 2; }));
    QTest::qWait(50);
    QList<QRect> rects;
    for (const auto &element : screen().elements()) {
        if (element.role != QAccessible::ListItem)
            continue;
        rects.append(element.rect);
        EXPECT_GE(element.rect.left(), 20);
        EXPECT_LE(element.rect.right(), GetParam().size.width() - 20);
    }
    EXPECT_FALSE(rects.isEmpty());
    for (qsizetype i = 1; i < rects.size(); ++i)
        EXPECT_EQ(rects[i].top() - rects[i - 1].bottom() - 1, 10);
}

INSTANTIATE_TEST_SUITE_P(HistoryView, HistoryViewFormats,
                         ::testing::Values(Format{{320, 568}, 1}, Format{{390, 844}, 1},
                                           Format{{768, 1024}, 1}, Format{{390, 844}, 2},
                                           Format{{320, 568}, 2}));

} // namespace
} // namespace clockwell
