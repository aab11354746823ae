#pragma once

#include <QString>

#include <chrono>

namespace clockwell::test {

/// The folder into which the server writes its e-mail when it has nobody to send it through.
class Outbox
{
public:
    explicit Outbox(QString folder) : m_folder(std::move(folder)) {}

    /// The six-digit code of the newest message to this address that has not been read here yet; empty when
    /// none arrives within `limit`.
    QString nextCode(const QString &address, std::chrono::milliseconds limit = std::chrono::seconds(15));

private:
    QString newestCode(const QString &address);

    QString m_folder;
    QString m_lastRead; // file names begin with the time
};

} // namespace clockwell::test
