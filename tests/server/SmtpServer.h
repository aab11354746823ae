#pragma once

#include "TempFolder.h"

#include <sys/types.h>

#include <chrono>
#include <cstddef>
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
        std::vector<std::string> firstReplies{}; ///< to the first messages; later ones are taken
        std::chrono::milliseconds delay{0};      ///< that it takes for each message
        int messagesOfAConnection = 0;           ///< after so many it closes the connection; 0: never
    };

    /// Waits until it answers, at most a minute; throws std::runtime_error when it does not.
    explicit SmtpServer(const Options &options);
    ~SmtpServer();
    SmtpServer(const SmtpServer &) = delete;
    SmtpServer &operator=(const SmtpServer &) = delete;

    pid_t process() const { return m_process; }
    std::string url() const { return "smtp://127.0.0.1:" + std::to_string(m_port); }
    /// What it took: a line each for sender, recipients and encryption, then the message.
    std::vector<std::string> messages() const;

    /// How many connections it has accepted.
    std::size_t connections() const;
    std::size_t closed() const; ///< and how many of them it has closed

    /// A port that nobody listens on but such a server, as long as this process lives.
    static std::uint16_t freePort();

private:
    TempFolder m_folder;
    std::uint16_t m_port;
    pid_t m_process = -1;
};

} // namespace clockwell::server::test
