#pragma once

#include "support/screen/ScreenDriver.h"

#include <QString>

#include <functional>

class QQuickWindow;

namespace clockwell::test {

/// Walks through the app step by step. Prints the texts of the screen after each step and saves a screenshot.
class Tour
{
public:
    Tour(QQuickWindow *window, QString directory);

    /// Calls `act`, which returns false when it fails, then waits until a text on the screen begins with
    /// `expected`. After a failed step all later ones are skipped.
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
