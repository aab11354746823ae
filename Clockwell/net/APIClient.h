#pragma once

#include "net/Decoding.h"
#include "net/Encoding.h"
#include "net/Errors.h"
#include "net/Reachability.h"
#include "net/ReplySlot.h"

#include <QMap>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace clockwell {

class SessionEvents;
class TokenStore;

/// The body type of a request without a body.
struct NoBody
{};

/// The app's only access to the server: builds a request, sends it, renews an expired session once, and turns
/// the reply into a record or an exception.
///
/// An actor: it works on a thread of its own, which starts with the first request. request() and perform()
/// may be awaited on any thread with an event loop; the caller resumes on that thread, also after an
/// exception. The token store and the session events must outlive the client. Destroy the client on the
/// thread that created it; that ends the calls in flight with a TransportError (cancelled).
class APIClient
{
public:
    struct Options
    {
        /// Origin and path prefix of the API, for example https://host/api. An invalid URL is a programming
        /// error.
        QUrl baseURL;
        /// Longest time without any data sent or received.
        std::chrono::milliseconds idleLimit = std::chrono::seconds(25);
        /// Longest duration of a request, and also the longest wait for an offline device to come online.
        std::chrono::milliseconds totalLimit = std::chrono::seconds(60);
        /// Largest reply body in bytes, after decompression.
        qint64 replyLimit = 16 * 1024 * 1024;
        /// PEM file of the certificate authorities to trust; empty: the system's.
        QString certificateFile = {};
        /// Called once, on the client's thread, with the first request.
        std::function<std::unique_ptr<Reachability>()> reachability = platformReachability;
    };

    APIClient(Options options, TokenStore &tokens, SessionEvents &events);
    APIClient(const APIClient &) = delete;
    APIClient &operator=(const APIClient &) = delete;
    ~APIClient();

    /// Sends `method` ("GET" or "POST") to `path` below the base URL; leading and trailing slashes of the
    /// path are ignored. `authorized` sends the stored access token and, after a 401, allows one renewal of
    /// the session and one retry. `isRetry` marks such a retry, which does not renew the session again.
    /// Throws APIError, TransportError, EncodingError or DecodingError.
    template <class T, class B = NoBody>
    QCoro::Task<T> request(QString path, QString method, QMap<QString, QString> query, std::optional<B> body,
                           bool authorized, bool isRetry = false);
    template <class T>
    QCoro::Task<T> request(QString path, QString method, QMap<QString, QString> query, std::nullopt_t,
                           bool authorized, bool isRetry = false);

    /// Runs `work` on the client's thread (for blocking reads and writes of tokens); the caller receives its
    /// result or exception on the caller's own thread. Work runs in the order of the calls.
    template <class R>
    QCoro::Task<R> perform(std::function<R()> work);

    /// Call it, on any thread, right before writing the tokens of a new session and right before deleting
    /// those of the old one. From then on, calls still in flight for the old session neither change the
    /// tokens nor announce an expiry. Waits for a write of tokens that has already begun.
    void sessionChanged() noexcept;

private:
    /// A call without its types, as the core handles it. The functions run on the client's thread.
    struct Call
    {
        QString path;
        QByteArray method;
        QMap<QString, QString> query;
        std::function<QByteArray()> encode;             // empty: no body
        std::function<void(const QByteArray &)> decode; // empty: the body of the reply is ignored
        bool authorized = false;
        bool isRetry = false;
    };
    class Core;
    class Worker;

    std::shared_ptr<ReplySlot> send(Call call);
    std::shared_ptr<ReplySlot> run(std::function<void()> work);

    std::unique_ptr<Core> m_core;
};

template <class T, class B>
QCoro::Task<T> APIClient::request(QString path, QString method, QMap<QString, QString> query,
                                  std::optional<B> body, bool authorized, bool isRetry)
{
    const auto result = std::make_shared<std::optional<T>>();
    Call call{std::move(path), method.toLatin1(), std::move(query), {}, {}, authorized, isRetry};
    if constexpr (!std::is_same_v<B, NoBody>) {
        if (body)
            call.encode = [content = std::move(*body)] { return encodeBody(content); };
    }
    if constexpr (std::is_same_v<T, Empty>)
        result->emplace();
    else
        call.decode = [result](const QByteArray &bytes) { result->emplace(clockwell::decode<T>(bytes)); };
    const std::shared_ptr<ReplySlot> slot = send(std::move(call));
    co_await slot->finished();
    co_return std::move(**result);
}

template <class T>
QCoro::Task<T> APIClient::request(QString path, QString method, QMap<QString, QString> query, std::nullopt_t,
                                  bool authorized, bool isRetry)
{
    return request<T, NoBody>(std::move(path), std::move(method), std::move(query), std::optional<NoBody>{},
                              authorized, isRetry);
}

template <class R>
QCoro::Task<R> APIClient::perform(std::function<R()> work)
{
    if constexpr (std::is_void_v<R>) {
        const std::shared_ptr<ReplySlot> slot = run(std::move(work));
        co_await slot->finished();
    } else {
        const auto result = std::make_shared<std::optional<R>>();
        const std::shared_ptr<ReplySlot> slot =
            run([result, work = std::move(work)] { result->emplace(work()); });
        co_await slot->finished();
        co_return std::move(**result);
    }
}

} // namespace clockwell
