#pragma once

#include "TempFolder.h"

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace clockwell::server::test {

/// A real mail server on loopback, as a child process; ended with the object.
class SmtpServer
{
public:
    struct Options
    {
        std::uint16_t port = freePort();
        std::string certificateFile = "-"; ///< "-": it neither encrypts nor asks for a sign-in
        std::string keyFile = "-";
        std::vector<std::string> firstReplies; ///< to the first messages; later ones are taken
    };

    /// Waits until it answers, at most ten seconds; throws std::runtime_error when it does not.
    explicit SmtpServer(const Options &options);
    ~SmtpServer();
    SmtpServer(const SmtpServer &) = delete;
    SmtpServer &operator=(const SmtpServer &) = delete;

    std::string url() const { return "smtp://127.0.0.1:" + std::to_string(m_port); }
    /// What it took: a line each for sender, recipients and encryption, then the message.
    std::vector<std::string> messages() const;

    /// A port that nobody listens on right now.
    static std::uint16_t freePort();

private:
    TempFolder m_folder;
    std::uint16_t m_port;
    pid_t m_process = -1;
};

} // namespace clockwell::server::test
