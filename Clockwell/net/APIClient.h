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

/// The one way to talk to the server: builds a request, sends it, renews an expired session once, and turns
/// the reply into a record or an exception.
///
/// An actor: everything happens on its own thread, which starts with the first request. request() and
/// perform() may be awaited on any thread with an event loop and resume there, also when they throw. The
/// token store and the session events must outlive the client; destroying the client (on the thread that made
/// it) ends what is in flight with a TransportError (cancelled).
class APIClient
{
public:
    struct Options
    {
        /// Origin and path prefix of the API, for example https://host/api. An invalid URL is a programming
        /// error.
        QUrl baseURL;
        /// Longest silence of a connection.
        std::chrono::milliseconds idleLimit = std::chrono::seconds(25);
        /// Longest time in all, and likewise the longest wait for a device that is offline.
        std::chrono::milliseconds totalLimit = std::chrono::seconds(60);
        /// Largest reply body in bytes, after decompression.
        qint64 replyLimit = 16 * 1024 * 1024;
        /// PEM file of the certificate authorities to trust. Empty: those that the system trusts.
        QString certificateFile = {};
        /// Called once, on the client's thread, with the first request.
        std::function<std::unique_ptr<Reachability>()> reachability = platformReachability;
    };

    APIClient(Options options, TokenStore &tokens, SessionEvents &events);
    APIClient(const APIClient &) = delete;
    APIClient &operator=(const APIClient &) = delete;
    ~APIClient();

    /// Sends `method` ("GET" or "POST") to `path` below the base URL; slashes around the path do not matter.
    /// `authorized` sends the stored access token and allows one renewal of the session and one repeat.
    /// `isRetry` marks such a repeat: nothing is renewed for it. Throws APIError, TransportError,
    /// EncodingError or DecodingError.
    template <class T, class B = NoBody>
    QCoro::Task<T> request(QString path, QString method, QMap<QString, QString> query, std::optional<B> body,
                           bool authorized, bool isRetry = false);
    template <class T>
    QCoro::Task<T> request(QString path, QString method, QMap<QString, QString> query, std::nullopt_t,
                           bool authorized, bool isRetry = false);

    /// Runs `work` on the client's thread (for blocking reads and writes of tokens); its result or exception
    /// comes back to the caller's thread. Work runs in the order in which it was given.
    template <class R>
    QCoro::Task<R> perform(std::function<R()> work);

    /// Any thread. To be called right before the tokens of a new session are written and right before the
    /// tokens of the old one are deleted: from then on, nothing that is still under way for the old session
    /// touches the tokens or announces an expiry. Waits for a write of tokens that has already begun.
    void sessionChanged() noexcept;

private:
    /// What the untyped core needs to know of a call. The functions run on the client's thread.
    struct Call
    {
        QString path;
        QByteArray method;
        QMap<QString, QString> query;
        std::function<QByteArray()> encode;             // empty: no body
        std::function<void(const QByteArray &)> decode; // empty: the body of the reply is not looked at
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
