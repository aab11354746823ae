#include "server/mail/MailSettings.h"

#include "server/http/AccessLog.h"
#include "server/mail/OutboxDelivery.h"
#include "server/mail/SmtpDelivery.h"
#include "server/storage/PostgresUrl.h"

#include <sodium.h>
#include <spdlog/spdlog.h>

#include <cstdlib>
#include <fstream>

namespace clockwell::server {

namespace {

constexpr const char *passwordVariable = "CLOCKWELL_SMTP_PASSWORD";

/// The first line of the file, or the variable, which is taken out of the environment: nothing that this
/// process starts inherits it, and the system does not show it with the process.
std::string readPassword(const MailSettings &settings)
{
    std::string password;
    if (char *value = std::getenv(passwordVariable)) {
        password = value;
        ::sodium_memzero(value, password.size()); // unsetenv() only forgets where it is
        ::unsetenv(passwordVariable);
    }
    if (settings.smtpPasswordFile.empty())
        return password;
    std::ifstream file{settings.smtpPasswordFile};
    if (!std::getline(file, password))
        throw std::runtime_error{"The password file " + settings.smtpPasswordFile + " cannot be read."};
    if (!password.empty() && password.back() == '\r')
        password.pop_back();
    return password;
}

SmtpEncryption encryptionNamed(const std::string &name)
{
    if (name == "none")
        return SmtpEncryption::None;
    return name == "optional" ? SmtpEncryption::Optional : SmtpEncryption::Required;
}

std::unique_ptr<MailDelivery> openSmtp(const MailSettings &settings)
{
    SmtpOptions smtp;
    smtp.url = settings.smtpUrl;
    smtp.user = settings.smtpUser;
    smtp.password = readPassword(settings);
    smtp.certificateAuthorities = settings.smtpCertificateAuthorities;
    smtp.encryption = encryptionNamed(settings.smtpTls);
    smtp.from = settings.from;
    if (!smtp.user.empty() && smtp.password.empty())
        throw std::runtime_error{
            "--smtp-user needs a password: set CLOCKWELL_SMTP_PASSWORD or give --smtp-password-file."};
    auto delivery = std::make_unique<SmtpDelivery>(smtp, systemClock());
    spdlog::info("event=mail smtp={}", logValue(smtp.url, smtp.url.size()));
    return delivery;
}

} // namespace

std::unique_ptr<MailDelivery> openMail(const MailSettings &settings, const std::string &database)
{
    if (!settings.smtpUrl.empty())
        return openSmtp(settings);
    const std::string beside = isPostgresUrl(database) ? "clockwell.outbox" : database + ".outbox";
    const std::string folder = settings.outbox.empty() ? beside : settings.outbox;
    auto outbox = std::make_unique<OutboxDelivery>(folder, settings.from, systemClock());
    spdlog::info("event=mail outbox={}", logValue(folder, folder.size()));
    return outbox;
}

MailQueueOptions queueOptions(const MailSettings &settings)
{
    MailQueueOptions queue;
    queue.deliveries = settings.smtpUrl.empty() ? 1 : settings.connections; // files keep their order
    queue.longestWait = std::chrono::seconds{settings.longestWaitSeconds};
    queue.flushLimit = std::chrono::seconds{settings.flushSeconds};
    return queue;
}

} // namespace clockwell::server
