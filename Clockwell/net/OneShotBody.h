#pragma once

#include <QByteArray>
#include <QIODevice>

namespace clockwell {

/// A request body that can be read once and never from its start again.
///
/// When a connection ends without an answer, Qt silently sends the request again on another one, a POST as
/// well, also when the connection was a fresh one. It rewinds the body for that; a body that refuses makes it
/// give up with an error, and what the server may already have acted on is not sent twice (RFC 9110,
/// section 9.2.2).
class OneShotBody final : public QIODevice
{
public:
    explicit OneShotBody(QByteArray bytes) : m_bytes(std::move(bytes)) { open(ReadOnly | Unbuffered); }

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return m_bytes.size() - m_at + QIODevice::bytesAvailable(); }
    bool atEnd() const override { return m_at == m_bytes.size(); }
    bool reset() override { return false; }

protected:
    qint64 readData(char *data, qint64 room) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const QByteArray m_bytes;
    qint64 m_at = 0;
};

} // namespace clockwell
