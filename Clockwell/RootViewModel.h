#pragma once

#include "account/AuthStore.h"

#include <QObject>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Tells the root view which content to build as the session's phase changes. A content is built anew each
/// time, so nothing of a former session stays behind. Main thread only; `auth` is not owned.
class RootViewModel : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(clockwell::AuthStore *auth MEMBER m_auth REQUIRED)

public:
    explicit RootViewModel(QObject *parent = nullptr);

    void classBegin() override {}
    void componentComplete() override;

Q_SIGNALS:
    /// Build the signed-out interface, at its root. Animated when somebody has just signed out.
    void signedOut(bool animated);
    /// Build the main tabs.
    void signedIn(bool animated);

private:
    void followPhase();

    AuthStore *m_auth = nullptr;
    AuthStore::Phase m_shown = AuthStore::Phase::Loading;
};

} // namespace clockwell
