#pragma once

#include "server/mail/MailDelivery.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <string>

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

/// Hands messages to a mail server by SMTP, each over a connection of its own.
class SmtpDelivery : public MailDelivery
{
public:
    /// Throws std::runtime_error when the SMTP library cannot be used.
    SmtpDelivery(SmtpOptions options, Clock clock);

    /// Refusals of the server with a code of the 400s and failures of the connection are transient; refusals
    /// of the 500s, of the password and of the certificate are permanent.
    void deliver(const Mail &mail, const std::atomic<bool> &giveUp) override;

private:
    SmtpOptions m_options;
    Clock m_clock;
};

} // namespace clockwell::server
