#pragma once

#include <QQuickWindow>
#include <QTest>

namespace clockwell::test {

/// Waits until a frame has been drawn: Qt Quick delivers the moves of fingers with the next one, and only the
/// last of those that came before it.
inline bool nextFrame(QQuickWindow &window)
{
    bool drawn = false;
    const auto connection = QObject::connect(&window, &QQuickWindow::frameSwapped, [&] { drawn = true; });
    window.update();
    const bool inTime = QTest::qWaitFor([&] { return drawn; }, 40'000);
    QObject::disconnect(connection);
    return inTime;
}

} // namespace clockwell::test
