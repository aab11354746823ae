#pragma once

#include "net/Errors.h"
#include "net/ReplySlot.h"

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

class QNetworkAccessManager;

namespace clockwell {

struct HttpReply
{
    std::optional<int> status; // none: what came back was no HTTP reply
    QByteArray body;
};

struct HttpLimits
{
    std::chrono::milliseconds idle; // longest silence
    std::chrono::milliseconds total;
    qint64 replyBytes; // after decompression
};

/// One request on its way and its reply, watched over by the limits. Owns the network reply and aborts it
/// when it goes.
class HttpExchange final : public QObject
{
public:
    /// `ownManager` is the manager of `reply` when it serves this exchange alone.
    HttpExchange(std::unique_ptr<QNetworkAccessManager> ownManager, QNetworkReply *reply,
                 const HttpLimits &limits);
    ~HttpExchange() override;

    /// To be awaited once; throws TransportError.
    ReplySlot::Finished finished() { return m_slot->finished(); }
    HttpReply takeReply();
    void cancel() { end(TransportError::Kind::Cancelled); }

private:
    std::optional<int> status() const;
    bool isCutShort() const;
    void collect();
    void progress();
    void complete();
    void end(TransportError::Kind kind);
    void tooLarge() { end(TransportError::Kind::ReplyTooLarge); }

    const HttpLimits m_limits;
    const std::unique_ptr<QNetworkAccessManager> m_ownManager;
    const std::unique_ptr<QNetworkReply> m_reply;
    const std::shared_ptr<ReplySlot> m_slot = ReplySlot::make();
    QByteArray m_body;
    QTimer m_idle;
    QTimer m_total;
};

} // namespace clockwell
