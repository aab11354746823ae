#include "SmtpServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace clockwell::server::test {

std::uint16_t SmtpServer::freePort()
{
    const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool known = ::bind(probe, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
                       ::getsockname(probe, reinterpret_cast<sockaddr *>(&address), &size) == 0;
    ::close(probe);
    if (!known)
        throw std::runtime_error{"no free port"};
    return ntohs(address.sin_port);
}

SmtpServer::SmtpServer(const Options &options) : m_port(options.port)
{
    std::filesystem::create_directory(m_folder.file("mail"));
    std::vector<std::string> words{"/usr/bin/python3",
                                   SMTP_SERVER_SCRIPT,
                                   m_folder.file("port"),
                                   m_folder.file("mail"),
                                   std::to_string(m_port),
                                   options.certificateFile,
                                   options.keyFile,
                                   m_folder.file("connections"),
                                   std::to_string(options.delay.count()),
                                   std::to_string(options.messagesOfAConnection)};
    words.insert(words.end(), options.firstReplies.begin(), options.firstReplies.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    if (::posix_spawn(&m_process, argv.front(), nullptr, nullptr, argv.data(), environ) != 0)
        throw std::runtime_error{"python3 does not start"};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{10};
    while (readFile(m_folder.file("port")).empty()) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error{"the mail server does not answer; is python3-aiosmtpd installed?"};
        std::this_thread::sleep_for(std::chrono::milliseconds{10});
    }
}

SmtpServer::~SmtpServer()
{
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

std::size_t SmtpServer::connections() const
{
    return readFile(m_folder.file("connections")).size(); // a byte for each
}

std::vector<std::string> SmtpServer::messages() const
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator{m_folder.file("mail")})
        if (entry.path().extension() != ".new")
            names.push_back(entry.path());
    std::ranges::sort(names);
    std::vector<std::string> texts;
    std::ranges::transform(names, std::back_inserter(texts), readFile);
    return texts;
}

} // namespace clockwell::server::test
