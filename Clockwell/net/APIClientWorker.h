#pragma once

#include "net/APIClient.h"
#include "net/HttpTransport.h"
#include "net/SessionRenewal.h"

namespace clockwell {

/// The part of the client that lives on the client's thread.
class APIClient::Worker
{
public:
    Worker(const Options &options, TokenStore &tokens, SessionEvents &events,
           std::shared_ptr<SessionGuard> guard);

    /// Performs a call and finishes the slot with its outcome.
    QCoro::Task<> serve(Call call, std::shared_ptr<ReplySlot> slot);
    /// Cancels everything in flight; the coroutines that wait for it resume from the thread's event queue.
    void close() { m_transport.close(); }

private:
    QCoro::Task<HttpReply> send(std::shared_ptr<const Call> call, SessionGuard::Epoch epoch, bool isRetry);
    QCoro::Task<HttpReply> sendAndRenew(std::shared_ptr<const Call> call);
    void authorize(HttpRequest &request) const;

    const QUrl m_baseURL;
    TokenStore &m_tokens;
    const std::shared_ptr<SessionGuard> m_guard;
    HttpTransport m_transport;
    SessionRenewal m_renewal;
};

} // namespace clockwell
