#include "ServerChild.h"

#include "Awaiting.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace clockwell::rush {

namespace asio = boost::asio;
using namespace std::chrono_literals;

namespace {

constexpr auto startLimit = 60s;
constexpr auto terminationLimit = 30s;
constexpr auto pollPause = 5ms;

} // namespace

ServerChild::ServerChild(std::filesystem::path folder, std::vector<std::string> serveOptions,
                         rlimit descriptors)
    : m_folder(std::move(folder)), m_serveOptions(std::move(serveOptions)), m_descriptors(descriptors)
{}

ServerChild::~ServerChild()
{
    kill();
}

asio::awaitable<void> ServerChild::start(asio::any_io_executor executor)
{
    std::filesystem::remove(m_folder / "port");
    spawn();
    const auto end = std::chrono::steady_clock::now() + startLimit;
    while (portInFile() == 0) {
        if (hasEnded() || std::chrono::steady_clock::now() > end)
            throw std::runtime_error{"The server did not start; its log is " + log()};
        co_await sleepFor(executor, pollPause);
    }
    m_endpoint.port(portInFile());
}

std::uint16_t ServerChild::portInFile() const
{
    std::uint16_t port = 0;
    std::ifstream{m_folder / "port"} >> port;
    return port;
}

/// Its descriptors beside the standard ones are none of ours: a server that inherited the phones' connections
/// would keep them open.
void ServerChild::spawn()
{
    std::vector<std::string> words{CLOCKWELL_SERVER_BINARY,
                                   "serve",
                                   "--database",
                                   database(),
                                   "--port-file",
                                   m_folder / "port",
                                   "--listen",
                                   "127.0.0.1:" + std::to_string(m_endpoint.port())};
    words.insert(words.end(), m_serveOptions.begin(), m_serveOptions.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    const int file = ::open(log().c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, file, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, file, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    rlimit ours{};
    ::getrlimit(RLIMIT_NOFILE, &ours);
    ::setrlimit(RLIMIT_NOFILE, &m_descriptors);
    const int error = ::posix_spawn(&m_process, argv.front(), &actions, nullptr, argv.data(), environ);
    ::setrlimit(RLIMIT_NOFILE, &ours);
    posix_spawn_file_actions_destroy(&actions);
    ::close(file);
    if (error != 0) {
        m_process = -1;
        throw std::system_error{error, std::generic_category(), "The server cannot be started"};
    }
}

void ServerChild::kill()
{
    if (m_process <= 0)
        return;
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
    m_process = -1;
}

int ServerChild::terminate()
{
    if (m_process <= 0)
        return -1;
    ::kill(m_process, SIGTERM);
    int status = 0;
    for (auto waited = 0ms; waited < terminationLimit; waited += pollPause) {
        if (::waitpid(m_process, &status, WNOHANG) != 0) {
            m_process = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        std::this_thread::sleep_for(pollPause);
    }
    kill();
    return -1;
}

bool ServerChild::hasEnded()
{
    if (m_process > 0 && ::waitpid(m_process, nullptr, WNOHANG) != 0)
        m_process = -1;
    return m_process <= 0;
}

} // namespace clockwell::rush
