#include "net/APIClientWorker.h"

#include "net/RequestUrl.h"
#include "net/SessionErrors.h"
#include "net/TokenStore.h"

#include <QFile>

#include <algorithm>

namespace clockwell {

namespace {

APIError makeError(const QByteArray &body, int status)
{
    try {
        const APIErrorBody error = decode<APIErrorBody>(body);
        return APIError(error.message ? error.message->text : QStringLiteral("Request failed"), error.error,
                        status);
    } catch (const DecodingError &) {
        return APIError(QStringLiteral("Request failed (%1).").arg(status), std::nullopt, status);
    }
}

/// A token with control characters could inject further header lines.
bool fitsHeader(const QString &token)
{
    return std::none_of(
        token.begin(), token.end(), [](QChar c) { return c < QChar(0x20) || c == QChar(0x7f); });
}

} // namespace

APIClient::Worker::Worker(const Options &options, TokenStore &tokens, SessionEvents &events,
                          std::shared_ptr<SessionGuard> guard)
    : m_baseURL(options.baseURL),
      m_tokens(tokens),
      m_guard(guard),
      m_transport(options.reachability, {options.idleLimit, options.totalLimit, options.replyLimit,
                                         QFile::encodeName(options.certificateFile)}),
      m_renewal(requestUrl(options.baseURL, QStringLiteral("auth/refresh"), {}), m_transport, tokens, events,
                std::move(guard))
{}

QCoro::Task<> APIClient::Worker::serve(Call call, std::shared_ptr<ReplySlot> slot)
{
    const auto shared = std::make_shared<const Call>(std::move(call));
    try {
        const HttpReply reply = co_await sendAndRenew(shared);
        if (!reply.status)
            throw APIError(QStringLiteral("No response from server."));
        if (*reply.status / 100 != 2)
            throw makeError(reply.body, *reply.status);
        try {
            if (shared->decode)
                shared->decode(reply.body);
        } catch (const DecodingError &) {
            throw APIError(QStringLiteral("Unexpected response from server."), std::nullopt, reply.status);
        }
        slot->finish();
    } catch (...) {
        slot->finish(std::current_exception());
    }
}

/// The reply to a call; after a 401, the reply to a retry with renewed tokens.
QCoro::Task<HttpReply> APIClient::Worker::sendAndRenew(std::shared_ptr<const Call> call)
{
    const SessionGuard::Epoch epoch = m_guard->current();
    HttpReply reply = co_await send(call, epoch, call->isRetry);
    const bool mayRenew = reply.status == 401 && call->authorized && !call->isRetry;
    if (!mayRenew || m_guard->current() != epoch || !m_tokens.load(TokenKey::refreshToken))
        co_return reply;
    co_await m_renewal.renew(epoch);
    co_return co_await send(call, epoch, true);
}

QCoro::Task<HttpReply> APIClient::Worker::send(std::shared_ptr<const Call> call, SessionGuard::Epoch epoch,
                                               bool isRetry)
{
    HttpRequest request{requestUrl(m_baseURL, call->path, call->query), {"Accept: application/json"}, {}};
    if (call->method != "GET")
        request.body = call->encode ? call->encode() : QByteArray("");
    if (call->encode)
        request.headers += "Content-Type: application/json";
    if (call->authorized)
        authorize(request);
    // The token just read may already belong to another user's session, in which a retry must not be sent.
    if (isRetry && m_guard->current() != epoch)
        throw noRefreshError();
    co_return co_await m_transport.send(std::move(request));
}

void APIClient::Worker::authorize(HttpRequest &request) const
{
    const std::optional<QString> token = m_tokens.load(TokenKey::accessToken);
    if (token && fitsHeader(*token))
        request.headers += "Authorization: Bearer " + token->toUtf8();
}

} // namespace clockwell
