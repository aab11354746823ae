#pragma once

#include "support/screen/ScreenDriver.h"

#include <QColor>
#include <QImage>
#include <QQuickItem>
#include <QQuickView>

namespace clockwell {
class Theme;
}

namespace clockwell::test {

/// Shows a piece of QML on the app's background in a window of its own, 390 points wide. What the piece needs
/// from the test stands in it as ids and properties; `signals` of the shown item are counted with QSignalSpy.
class ComponentStage
{
public:
    /// `qml` is one object, for example "PrimaryButton { width: 350; title: \"Sign in\" }". It is shown at
    /// (20, 20).
    explicit ComponentStage(const QByteArray &qml, QSize size = QSize(390, 400));

    QQuickView &window() { return m_view; }
    ScreenDriver &screen() { return m_screen; }
    Theme &theme();
    /// The object of `qml`.
    QQuickItem *item() const { return m_item; }
    /// Its descendant of this object name; the test fails and it is null when there is none.
    QQuickItem *part(const char *objectName) const;

    /// The text that is shown with this wording inside the item; null when there is none.
    QQuickItem *shownText(const QString &text) const;

    /// What the window shows, after everything that is pending.
    QImage shot();
    /// The colour at a point of the item, in points from its top left corner.
    QColor colorAt(qreal x, qreal y);
    /// The part of the item, in its coordinates, whose pixels have the colour, give or take what smoothing
    /// adds.
    QRect areaOf(QColor color);
    /// The number of pixels inside the item whose colour differs from the background's.
    int inkOf(QQuickItem *item);

private:
    QQuickView m_view;
    QQuickItem *m_item = nullptr;
    ScreenDriver m_screen{&m_view};
};

} // namespace clockwell::test
