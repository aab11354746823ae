#include "PostgresServer.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <stdexcept>

namespace clockwell::server::test {

namespace {

std::string newFolder()
{
    static std::atomic<int> count = 0;
    return "/tmp/clockwell-postgres-" + std::to_string(::getpid()) + "-" + std::to_string(++count);
}

} // namespace

PostgresServer::PostgresServer(const std::vector<std::string> &options)
    : m_folder(newFolder()), m_options(options)
{
    if (run("fresh") != 0)
        throw std::runtime_error{"no PostgreSQL"};
}

PostgresServer::~PostgresServer()
{
    run("remove");
}

void PostgresServer::start() const
{
    if (run("start") != 0)
        throw std::runtime_error{"PostgreSQL does not start again"};
}

void PostgresServer::stop() const
{
    run("stop");
}

int PostgresServer::run(const std::string &command) const
{
    std::vector<std::string> words{POSTGRES_SERVER_SCRIPT, command, m_folder};
    words.insert(words.end(), m_options.begin(), m_options.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t process = -1;
    if (::posix_spawn(&process, argv.front(), nullptr, nullptr, argv.data(), environ) != 0)
        return -1;
    int status = -1;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace clockwell::server::test
