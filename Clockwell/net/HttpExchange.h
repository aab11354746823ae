#pragma once

#include "net/CurlMulti.h"
#include "net/Errors.h"
#include "net/ReplySlot.h"

#include <QByteArray>
#include <QList>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <memory>
#include <optional>

namespace clockwell {

struct HttpRequest
{
    QUrl url;
    QList<QByteArray> headers;      // each "Name: value"; no Accept or Content-Type is added
    std::optional<QByteArray> body; // nullopt: a GET; otherwise a POST, also with an empty body
};

struct HttpReply
{
    std::optional<int> status; // nullopt: the reply was not HTTP
    QByteArray body;
};

struct HttpOptions
{
    std::chrono::milliseconds idleLimit; // longest time without any data sent or received
    std::chrono::milliseconds totalLimit;
    qint64 replyLimit;          // in bytes, after decompression
    QByteArray certificateFile; // certificate authorities to trust, PEM; empty: the system's
};

/// One request in flight and its reply, subject to the limits. Its destructor ends the transfer.
class HttpExchange final
{
public:
    HttpExchange(std::shared_ptr<CurlMulti> connections, HttpRequest request, const HttpOptions &options);
    HttpExchange(const HttpExchange &) = delete;
    HttpExchange &operator=(const HttpExchange &) = delete;
    ~HttpExchange();

    /// Await it only once; throws TransportError.
    ReplySlot::Finished finished() { return m_slot->finished(); }
    HttpReply takeReply();
    void cancel() { end(TransportError::Kind::Cancelled); }

private:
    template <class Value>
    void set(CURLoption option, Value value);
    void setRequestOptions();
    void setConnectionOptions();
    void setCallbacks();
    void startTimers();

    static size_t onHeader(char *line, size_t, size_t length, void *self) noexcept;
    static size_t onBody(char *bytes, size_t, size_t count, void *self) noexcept;
    static int onProgress(void *self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) noexcept;
    static int onConnected(void *self, char *, char *, int, int) noexcept;

    std::optional<int> status() const;
    void restartIdleTimer();
    void complete(CURLcode result);
    void end(TransportError::Kind kind);

    const HttpOptions m_options;
    const HttpRequest m_request;
    const std::shared_ptr<CurlMulti> m_connections;
    CURL *const m_transfer;
    curl_slist *m_headers = nullptr;
    const std::shared_ptr<ReplySlot> m_slot = ReplySlot::make();
    QByteArray m_body;
    bool m_sent = false; // the request was passed to a connection
    bool m_headComplete = false;
    curl_off_t m_transferred = 0;
    QTimer m_idle;
    QTimer m_total;
};

} // namespace clockwell
