#pragma once

#include <QDateTime>
#include <QObject>

#include <optional>

namespace clockwell {

/// Notifies the app that the server no longer accepts the session. Lives on the main thread and is set only
/// there.
class SessionEvents : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    std::optional<QDateTime> expiredAt() const { return m_expiredAt; }
    /// Emits expiredAtChanged() even if the value is equal: a second expiry is a separate event.
    void setExpiredAt(QDateTime moment);

Q_SIGNALS:
    void expiredAtChanged();

private:
    std::optional<QDateTime> m_expiredAt;
};

} // namespace clockwell
