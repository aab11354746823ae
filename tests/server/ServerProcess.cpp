#include "ServerProcess.h"

#include "Within.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>
#include <utility>

namespace clockwell::server::test {

namespace {

constexpr std::chrono::milliseconds pollPause{5};

pid_t spawnServer(const std::vector<std::string> &arguments, const std::string &output,
                  const std::string &errors)
{
    std::vector<std::string> words{CLOCKWELL_SERVER_BINARY};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), flags, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), flags, 0600);
    pid_t process = -1;
    if (::posix_spawn(&process, argv.front(), &actions, nullptr, argv.data(), environ) != 0)
        process = -1;
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

/// The exit code; -1 when a signal ended it, also ours after the limit.
int waitForEnd(pid_t process, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    int status = 0;
    while (::waitpid(process, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end)
            ::kill(process, SIGKILL);
        std::this_thread::sleep_for(pollPause);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

ProcessResult runServer(const std::vector<std::string> &arguments, std::chrono::milliseconds limit)
{
    const TempFolder folder;
    const pid_t process = spawnServer(arguments, folder.file("out"), folder.file("err"));
    if (process < 0)
        return {};
    const int exitCode = waitForEnd(process, limit);
    return {exitCode, readFile(folder.file("out")), readFile(folder.file("err"))};
}

ServerProcess::ServerProcess(const std::string &database, std::vector<std::string> more,
                             const std::string &logFile)
{
    const std::string portFile = m_folder.file("port");
    std::vector<std::string> arguments{"serve", "--listen", "127.0.0.1:0", "--port-file", portFile};
    if (!database.empty())
        arguments.insert(arguments.end(), {"--database", database});
    arguments.insert(arguments.end(), more.begin(), more.end());
    const bool isFile =
        !database.empty() && database.find("://") == std::string::npos; // e-mails go beside it
    const auto isMail = [](const std::string &word) { return word == "--outbox" || word == "--smtp-url"; };
    if (!isFile && std::none_of(more.begin(), more.end(), isMail))
        arguments.insert(arguments.end(), {"--outbox", m_folder.file("outbox")});
    m_process = spawnServer(arguments, "/dev/null", logFile.empty() ? m_folder.file("log") : logFile);
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes{1};
    while (m_port == 0 && m_process > 0 && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(pollPause);
        if (::waitpid(m_process, nullptr, WNOHANG) == m_process)
            m_process = -1;
        const std::string text = readFile(portFile);
        m_port = text.empty() ? std::uint16_t{0} : static_cast<std::uint16_t>(std::stoi(text));
    }
}

ServerProcess::~ServerProcess()
{
    kill();
}

std::string ServerProcess::log() const
{
    constexpr std::chrono::milliseconds quiet{250}; // the log has a thread of its own
    std::string text = readFile(m_folder.file("log"));
    for (int rounds = 0; m_process > 0 && rounds < 40; ++rounds) {
        std::this_thread::sleep_for(quiet);
        const std::string before = std::exchange(text, readFile(m_folder.file("log")));
        if (before == text && !text.empty())
            break;
    }
    return text;
}

bool ServerProcess::logs(const std::string &text) const
{
    return within(
        std::chrono::seconds{20},
        [&] { return readFile(m_folder.file("log")).find(text) != std::string::npos; });
}

void ServerProcess::kill()
{
    if (m_process <= 0)
        return;
    ::kill(m_process, SIGKILL);
    waitForEnd(m_process, std::chrono::seconds{5});
    m_process = -1;
}

int ServerProcess::terminate()
{
    if (m_process <= 0)
        return -1;
    ::kill(m_process, SIGTERM);
    const int exitCode = waitForEnd(m_process, std::chrono::minutes{1});
    m_process = -1;
    return exitCode;
}

} // namespace clockwell::server::test
