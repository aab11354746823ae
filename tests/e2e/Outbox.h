#pragma once

#include <QString>

#include <chrono>

namespace clockwell::test {

/// The folder into which the server writes its e-mail when no mail server is configured.
class Outbox
{
public:
    explicit Outbox(QString folder) : m_folder(std::move(folder)) {}

    /// Returns the six-digit code of the newest unread message to this address, and marks it as read; empty
    /// when none arrives within `limit`.
    QString nextCode(const QString &address, std::chrono::milliseconds limit = std::chrono::seconds(15));

private:
    QString newestCode(const QString &address);

    QString m_folder;
    QString m_lastRead; // file names begin with the time, so they sort by it
};

} // namespace clockwell::test
