#pragma once

#include "server/mail/Mail.h"

#include <chrono>
#include <concepts>
#include <functional>
#include <utility>

namespace clockwell::server {

/// The way out for e-mails, with the question whether it is open. Safe on several threads.
class SendMail
{
public:
    using Post = std::function<void(Mail)>;
    /// By how much a further e-mail would take too long; zero when it would arrive in time.
    using Excess = std::function<std::chrono::seconds(Precedence)>;

    SendMail() = default; ///< e-mails go nowhere

    /// `post` takes an e-mail to send it later; it never blocks and never throws. Without `excess` every
    /// e-mail is thought to arrive in time.
    template <std::invocable<Mail> Function>
    SendMail(Function post, Excess excess = {}) : m_post(std::move(post)), m_excess(std::move(excess))
    {}

    void operator()(Mail mail) const
    {
        if (m_post)
            m_post(std::move(mail));
    }

    /// Call it before anything is counted, stored or promised, whoever asks: throws ApiError 503 MAIL_BUSY
    /// with Retry-After when an e-mail would not arrive within the life of a code.
    void requireRoom(Precedence precedence) const;

private:
    Post m_post;
    Excess m_excess;
};

} // namespace clockwell::server
