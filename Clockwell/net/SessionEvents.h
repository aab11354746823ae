#pragma once

#include <QDateTime>
#include <QObject>

#include <optional>

namespace clockwell {

/// Tells the app that the server no longer accepts the session. Lives on the main thread, and is only written
/// there.
class SessionEvents : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    std::optional<QDateTime> expiredAt() const { return m_expiredAt; }
    /// Announces every assignment, also of an equal value: a second expiry is an event of its own.
    void setExpiredAt(QDateTime moment);

Q_SIGNALS:
    void expiredAtChanged();

private:
    std::optional<QDateTime> m_expiredAt;
};

} // namespace clockwell
