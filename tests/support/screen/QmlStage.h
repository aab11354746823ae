#pragma once

#include "ScreenDriver.h"

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

/// Shows one screen of the app's QML modules in a separate window.
class QmlStage
{
public:
    /// `file` is relative to the modules' root, for example "Clockwell/Account/LoginView.qml".
    QmlStage(const QString &file, const QVariantMap &properties, QSize size = QSize(390, 844))
    {
        m_view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
        m_view.setInitialProperties(properties);
        m_view.setResizeMode(QQuickView::SizeRootObjectToView);
        m_view.resize(size);
        m_view.setSource(QUrl(QStringLiteral("qrc:/qt/qml/") + file));
        for (const auto &error : m_view.errors())
            ADD_FAILURE() << error.toString().toStdString();
        m_view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_view));
        m_view.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_view));
    }

    QQuickView &view() { return m_view; }
    QQuickItem *root() { return m_view.rootObject(); }
    ScreenDriver &screen() { return m_screen; }
    ScreenDriver *operator->() { return &m_screen; }

private:
    QQuickView m_view;
    ScreenDriver m_screen{&m_view};
};

} // namespace clockwell::test
