#pragma once

#include <string>
#include <vector>

namespace clockwell::server::test {

/// A PostgreSQL of its own, without databases of others, gone with the object; for tests that stop it.
class PostgresServer
{
public:
    /// `options`: of the server, such as "fsync=on". Throws std::runtime_error when it does not start.
    explicit PostgresServer(const std::vector<std::string> &options = {});
    ~PostgresServer();
    PostgresServer(const PostgresServer &) = delete;
    PostgresServer &operator=(const PostgresServer &) = delete;

    /// Where its socket is, and its data in "data"; both belong to the user as whom it runs.
    const std::string &folder() const { return m_folder; }
    /// The URL of its only database, as a superuser.
    std::string url() const { return "postgresql://postgres@/postgres?host=" + m_folder; }

    void start() const;
    void stop() const; ///< without a word to those who are connected

private:
    int run(const std::string &command) const;

    std::string m_folder;
    std::vector<std::string> m_options;
};

} // namespace clockwell::server::test
