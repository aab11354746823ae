#pragma once

#include "server/mail/MailDelivery.h"
#include "server/mail/MailQueue.h"

#include <memory>
#include <string>

namespace clockwell::server {

/// Where e-mails go, as the command line says it.
struct MailSettings
{
    std::string outbox; ///< folder; empty: beside the database
    std::string from = "clockwell@localhost";
    std::string smtpUrl; ///< empty: e-mails are written to the outbox
    std::string smtpUser;
    std::string smtpPasswordFile;     ///< empty: the environment variable CLOCKWELL_SMTP_PASSWORD
    std::string smtpTls = "required"; ///< required, optional or none
    std::string smtpCertificateAuthorities;
    unsigned connections = 4;          ///< to the mail server, at once
    unsigned longestWaitSeconds = 300; ///< for people's own messages, half of it for strangers'
    unsigned flushSeconds = 10;        ///< for what waits at the end
};

/// Opens the way and logs which it is. Throws std::runtime_error with a text for people.
std::unique_ptr<MailDelivery> openMail(const MailSettings &settings, const std::string &database);

MailQueueOptions queueOptions(const MailSettings &settings);

} // namespace clockwell::server
