#include "State.h"
#include "ui/dialogs/DialogScope.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <qpa/qwindowsysteminterface.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace clockwell::test {

namespace {

constexpr Format formats[] = {
    {"390x844", {390, 844}, 1},
    {"320x568", {320, 568}, 1},
    {"768x1024", {768, 1024}, 1},
    {"390x844-text-200", {390, 844}, 2},
};

bool isField(const QQuickItem *item)
{
    return item->flags().testFlag(QQuickItem::ItemAcceptsInputMethod);
}

/// What can be pressed by a finger as well as by assistive technology.
bool isButton(const QObject *object)
{
    const auto *item = qobject_cast<const QQuickItem *>(object);
    auto *interface = QAccessible::queryAccessibleInterface(const_cast<QObject *>(object));
    auto *actions = interface ? interface->actionInterface() : nullptr;
    return item && actions && item->acceptedMouseButtons().testFlag(Qt::LeftButton) &&
           actions->actionNames().contains(QAccessibleActionInterface::pressAction());
}

/// Where it is drawn; a field's own bounds are those of its text.
QRectF areaOf(const QQuickItem *item)
{
    return {QPointF(), item->size()};
}

/// Everything that a finger can be meant for, also what is disabled.
QList<QQuickItem *> controlsIn(QQuickItem *item)
{
    if (!item->isVisible())
        return {};
    QList<QQuickItem *> found;
    if ((isField(item) || isButton(item)) && !DialogScope::covers(item))
        found.append(item);
    const auto children = item->childItems();
    for (QQuickItem *child : children)
        found.append(controlsIn(child));
    return found;
}

QString nameOf(const QObject *item)
{
    auto *interface = QAccessible::queryAccessibleInterface(const_cast<QObject *>(item));
    return interface ? interface->text(QAccessible::Name) : u"(nothing)"_s;
}

/// Scrolls by as little as shows the item with some space around it.
void bringIntoView(const QQuickItem *item, QQuickItem *flickable)
{
    constexpr qreal margin = 24;
    const QRectF area = item->mapRectToItem(flickable, item->boundingRect()).adjusted(0, -margin, 0, margin);
    const qreal by = std::max(std::min(area.top(), 0.0), area.bottom() - flickable->height());
    const qreal most = std::max(0.0, flickable->property("contentHeight").toReal() - flickable->height());
    if (!qFuzzyIsNull(by))
        flickable->setProperty("contentY",
                               std::clamp(flickable->property("contentY").toReal() + by, 0.0, most));
}

/// One screen at one size, and a finger on it.
class Surface
{
public:
    explicit Surface(QQuickWindow *window) : m_window(window), m_controls(controlsIn(window->contentItem()))
    {}

    const QList<QQuickItem *> &controls() const { return m_controls; }

    /// Whether a point of the item is seen, after scrolling to the item.
    bool isSeen(QQuickItem *item, const QPointF &point) const
    {
        bool seen = QRectF(QPointF(), m_window->size()).contains(item->mapToScene(point));
        for (QQuickItem *around = item->parentItem(); around && seen; around = around->parentItem())
            seen = !around->clip() || around->contains(item->mapToItem(around, point));
        return seen;
    }

    void scrollTo(QQuickItem *item) const
    {
        for (QQuickItem *around = item->parentItem(); around; around = around->parentItem())
            if (around->inherits("QQuickFlickable"))
                bringIntoView(item, around);
    }

    /// What a press at a point of the item goes to; null when nothing takes it.
    QQuickItem *press(QQuickItem *item, const QPointF &point) const
    {
        scrollTo(item); // the focus may have moved the screen
        const QPointF place = item->mapToScene(point);
        send(QEvent::MouseButtonPress, place);
        QQuickItem *taker = m_window->mouseGrabberItem();
        if (taker && !isField(taker)) // whose taps are harmless
            taker->ungrabMouse();     // let go, it is no tap
        send(QEvent::MouseButtonRelease, place);
        const bool isControl = std::any_of(m_controls.begin(), m_controls.end(),
                                           [taker](const QQuickItem *control) { return control == taker; });
        return isControl ? taker : nullptr;
    }

    /// Whether another control is drawn at a point of this one.
    bool isTaken(const QQuickItem *item, const QPointF &point) const
    {
        return std::any_of(
            m_controls.begin(), m_controls.end(),
            [&](const QQuickItem *other) {
                const QPointF place = item->mapToItem(other, point);
                return other != item &&
                       (isField(other) ? other->contains(place) : areaOf(other).contains(place));
            });
    }

private:
    /// As the platform does, also at fractions of a point; never soon enough for a double click.
    void send(QEvent::Type type, const QPointF &place) const
    {
        static ulong time = 0;
        time += 1000;
        QWindowSystemInterface::handleMouseEvent<QWindowSystemInterface::SynchronousDelivery>(
            m_window, time, place, m_window->mapToGlobal(place),
            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton, type);
    }

    QQuickWindow *m_window;
    QList<QQuickItem *> m_controls;
};

/// Where a control is drawn a press is its own, or, while it is disabled, nobody's.
void expectItsOwn(const Surface &surface, QQuickItem *control)
{
    surface.scrollTo(control);
    const QRectF rect = areaOf(control).adjusted(0.5, 0.5, -0.5, -0.5);
    const QObject *expected = control->isEnabled() ? control : nullptr;
    int seen = 0;
    for (const QPointF &point :
         {rect.center(), rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()}) {
        if (!surface.isSeen(control, point))
            continue;
        ++seen;
        const QObject *taker = surface.press(control, point);
        EXPECT_EQ(taker, expected) << nameOf(control).toStdString() << " at " << point.x() << ", "
                                   << point.y() << ": " << nameOf(taker).toStdString();
    }
    EXPECT_GT(seen, 0) << nameOf(control).toStdString() << " is out of reach";
}

/// It is hit within 44 points around its middle, but for what others are drawn on or reach as well. What is
/// drawn stands on whole points, which takes up to half a one off.
void expectRoomForAFinger(const Surface &surface, QQuickItem *control)
{
    surface.scrollTo(control);
    const QPointF middle = areaOf(control).center();
    const qreal x = std::max(21.0, control->width() / 2 - 0.5);
    const qreal y = std::max(21.0, control->height() / 2 - 0.5);
    for (const QPointF &point :
         {middle + QPointF(x, 0), middle - QPointF(x, 0), middle + QPointF(0, y), middle - QPointF(0, y)}) {
        if (!surface.isSeen(control, point) || surface.isTaken(control, point))
            continue;
        const QObject *taker = surface.press(control, point);
        EXPECT_TRUE(taker == control || isButton(taker))
            << nameOf(control).toStdString() << " at " << point.x() << ", " << point.y() << ": "
            << nameOf(taker).toStdString();
    }
}

class TouchTargetsTest : public ::testing::TestWithParam<const char *>
{};

State stateNamed(const QString &name)
{
    for (const State &state : signInStates() + signUpStates() + codeStates() + mainStates() +
                                  historyStates() + summaryStates() + profileStates())
        if (QString::fromLatin1(state.name) == name)
            return state;
    ADD_FAILURE() << "no state " << name.toStdString();
    return {};
}

} // namespace

TEST_P(TouchTargetsTest, AreWhereTheControlsAreDrawn)
{
    const State state = stateNamed(QString::fromLatin1(GetParam()));
    Stage stage(formats[0], state.device);
    ASSERT_TRUE(state.reach(stage)) << stage.screen().dump().toStdString();
    for (const Format &format : formats) {
        SCOPED_TRACE(format.name);
        stage.resize(format);
        ASSERT_TRUE(stage.screen().waitUntilStill());
        const Surface surface(stage.window());
        EXPECT_FALSE(surface.controls().isEmpty());
        for (QQuickItem *control : surface.controls()) {
            expectItsOwn(surface, control);
            if (control->isEnabled() && !isField(control))
                expectRoomForAFinger(surface, control);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Screens, TouchTargetsTest,
                         ::testing::Values("sign-in-idle", "sign-in-filled", "sign-in-unverified",
                                           "sign-up-refused", "forgot-refused", "code-reset-refused",
                                           "code-verify-resent", "code-done-verify", "home-inside",
                                           "home-location-off", "history-few", "summary-filled", "profile",
                                           "profile-sign-out", "password-wrong"));

} // namespace clockwell::test
