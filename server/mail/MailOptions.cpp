#include "server/mail/MailOptions.h"

#include "server/auth/EmailAddress.h"
#include "server/mail/SmtpDelivery.h"

#include <CLI/CLI.hpp>

namespace clockwell::server {

namespace {

// Each returns what is wrong with an option's text; nothing when it is all right.

std::string fromProblem(const std::string &text)
{
    return isEmailAddress(text) ? "" : "\"" + text + "\" is not an e-mail address";
}

// The text is not repeated: it may hold a password, put where none belongs.
std::string urlProblem(const std::string &text)
{
    return isSmtpUrl(text) ? "" : "the address is not of the form smtp://HOST:PORT or smtps://HOST:PORT";
}

} // namespace

void addMailOptions(CLI::App &command, MailSettings &settings)
{
    auto *outbox =
        command
            .add_option(
                "--outbox", settings.outbox,
                "Folder for e-mails as .eml files [the SQLite file's name.outbox, or clockwell.outbox]")
            ->envname("CLOCKWELL_OUTBOX")
            ->type_name("FOLDER");
    command.add_option("--mail-from", settings.from, "The address that e-mails come from")
        ->envname("CLOCKWELL_MAIL_FROM")
        ->type_name("ADDRESS")
        ->check(fromProblem)
        ->capture_default_str();
    auto *url = command.add_option("--smtp-url", settings.smtpUrl, "Send e-mails through this server")
                    ->envname("CLOCKWELL_SMTP_URL")
                    ->type_name("smtp[s]://HOST:PORT")
                    ->check(urlProblem)
                    ->excludes(outbox);
    command
        .add_option("--smtp-user", settings.smtpUser,
                    "Name at that server; the password is read from CLOCKWELL_SMTP_PASSWORD")
        ->envname("CLOCKWELL_SMTP_USER")
        ->needs(url);
    command
        .add_option("--smtp-password-file", settings.smtpPasswordFile, "Or from the first line of this file")
        ->type_name("FILE")
        ->needs(url);
    command
        .add_option("--smtp-tls", settings.smtpTls,
                    "Whether an smtp:// connection must be encrypted (STARTTLS)")
        ->check(CLI::IsMember({"required", "optional", "none"}))
        ->capture_default_str();
    command
        .add_option("--smtp-ca", settings.smtpCertificateAuthorities,
                    "PEM file of trusted authorities [the system's]")
        ->type_name("FILE")
        ->check(CLI::ExistingFile);
    command
        .add_option("--smtp-connections", settings.connections,
                    "E-mails that are handed to that server at once, each over a connection of its own")
        ->check(CLI::Range(1, 50))
        ->capture_default_str();
    command
        .add_option("--mail-wait", settings.longestWaitSeconds,
                    "Seconds that a code by e-mail may take; when it would be more, none is promised")
        ->check(CLI::Range(1, 300))
        ->capture_default_str();
    command
        .add_option("--mail-flush", settings.flushSeconds,
                    "Seconds at the end for delivering e-mails that still wait")
        ->check(CLI::Range(0, 300))
        ->capture_default_str();
}

} // namespace clockwell::server
