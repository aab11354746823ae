#pragma once

#include "server/mail/MailDelivery.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace clockwell::server {

enum class SmtpEncryption { Required, Optional, None };

struct SmtpOptions
{
    std::string url;  ///< smtp://HOST[:PORT] or smtps://HOST[:PORT]
    std::string user; ///< empty: no authentication
    std::string password;
    std::string certificateAuthorities;                   ///< PEM file; empty: the system's
    SmtpEncryption encryption = SmtpEncryption::Required; ///< by STARTTLS, for smtp://
    std::string from;
    std::chrono::seconds limit{30}; ///< for one message
};

/// Whether the URL is of one of the two forms, with nothing (like a password) besides host and port.
bool isSmtpUrl(const std::string &url);

class SmtpConnection;

/// Hands messages to a mail server by SMTP, over as many connections as there are messages at once. A
/// connection is kept for the next message until one fails.
class SmtpDelivery : public MailDelivery
{
public:
    /// Throws std::runtime_error when the SMTP library cannot be used.
    SmtpDelivery(SmtpOptions options, Clock clock);

    ~SmtpDelivery() override;

    /// Down is what keeps the first command from being sent: the connection, the certificate, the sign-in.
    /// After that refusals of the 400s and broken connections are transient, those of the 500s permanent.
    void deliver(const Mail &mail, const std::atomic<bool> &giveUp) override;
    void check(const std::atomic<bool> &giveUp) override;

private:
    std::unique_ptr<SmtpConnection> takeConnection();
    void keep(std::unique_ptr<SmtpConnection> connection);

    SmtpOptions m_options;
    Clock m_clock;
    std::mutex m_lock; // guards m_kept
    std::vector<std::unique_ptr<SmtpConnection>> m_kept;
};

} // namespace clockwell::server
