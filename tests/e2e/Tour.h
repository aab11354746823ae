#pragma once

#include "support/screen/ScreenDriver.h"

#include <QString>

#include <functional>

class QQuickWindow;

namespace clockwell::test {

/// Walks through the app step by step, printing what the screen says after each step and keeping a picture of
/// it.
class Tour
{
public:
    Tour(QQuickWindow *window, QString directory);

    /// Does `act`, then waits for `expected` to begin some text on the screen. Once a step has failed the
    /// later ones are skipped. `act` returns false when it could not be done.
    void step(const QString &title, const std::function<bool(ScreenDriver &)> &act, const QString &expected);
    bool failed() const { return m_failed; }

private:
    void fail(const QString &title, const QString &why);

    ScreenDriver m_screen;
    QString m_directory;
    int m_count = 0;
    bool m_failed = false;
};

} // namespace clockwell::test
