#include "SmtpServer.h"

#include "ReservedPort.h"
#include "Within.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <deque>
#include <stdexcept>

namespace clockwell::server::test {

std::uint16_t SmtpServer::freePort()
{
    static std::deque<ReservedPort> ports;
    return ports.emplace_back().number();
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
                                   m_folder.file("closed"),
                                   std::to_string(options.delay.count()),
                                   std::to_string(options.messagesOfAConnection)};
    words.insert(words.end(), options.firstReplies.begin(), options.firstReplies.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    if (::posix_spawn(&m_process, argv.front(), nullptr, nullptr, argv.data(), environ) != 0)
        throw std::runtime_error{"python3 does not start"};
    if (!within(std::chrono::minutes{1}, [this] { return !readFile(m_folder.file("port")).empty(); }))
        throw std::runtime_error{"the mail server does not answer; is python3-aiosmtpd installed?"};
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

std::size_t SmtpServer::closed() const
{
    return readFile(m_folder.file("closed")).size();
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
