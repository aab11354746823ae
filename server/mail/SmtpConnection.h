#pragma once

#include "server/mail/SmtpDelivery.h"

#include <curl/curl.h>

#include <atomic>
#include <string>

namespace clockwell::server {

/// A connection to the mail server that is kept from one message to the next. Used by one thread at a time.
class SmtpConnection
{
public:
    /// `options` outlive this. Throws DeliveryError when there is no memory.
    explicit SmtpConnection(const SmtpOptions &options);
    ~SmtpConnection();
    SmtpConnection(const SmtpConnection &) = delete;
    SmtpConnection &operator=(const SmtpConnection &) = delete;

    /// See MailDelivery. A kept connection that the server has closed meanwhile is replaced.
    void deliver(const std::string &recipient, const std::string &text, const std::atomic<bool> &giveUp);
    void check(const std::atomic<bool> &giveUp);

private:
    template <class Value>
    void set(CURLoption option, Value value);
    void prepare(const std::atomic<bool> &giveUp);
    void perform();
    bool wasKept() const;
    long reply() const;

    const SmtpOptions &m_options;
    CURL *m_handle;
    bool m_isReady = false; // the last transfer got as far as to its first command
};

} // namespace clockwell::server
