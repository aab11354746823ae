#pragma once

#include "account/AuthStore.h"

#include <QObject>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// Tells the root view which content to build when the session's phase changes. The content is built again
/// each time, so that nothing of an earlier session remains. Main thread only; `auth` is not owned.
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
    /// Build the interface for signed-out users, at its first screen. Animated after a sign-out.
    void signedOut(bool animated);
    /// Build the main tabs.
    void signedIn(bool animated);

private:
    void followPhase();

    AuthStore *m_auth = nullptr;
    AuthStore::Phase m_shown = AuthStore::Phase::Loading;
};

} // namespace clockwell
