#pragma once

#include "TempFolder.h"

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace clockwell::server::test {

struct ProcessResult
{
    int exitCode = -1; ///< -1 when it was ended by a signal
    std::string output;
    std::string errors;
};

/// Runs the server program to its end, or kills it when the limit is over.
ProcessResult runServer(const std::vector<std::string> &arguments,
                        std::chrono::milliseconds limit = std::chrono::minutes{1});

/// The server program while it serves; killed with the object if it still runs.
class ServerProcess
{
public:
    /// Starts it on a free port and waits until it listens or ends, at most a minute. `logFile`: where its
    /// standard error goes, perhaps a pipe that has a reader; empty: to a file for log().
    /// `database`: empty for the one in the environment.
    explicit ServerProcess(const std::string &database, std::vector<std::string> more = {},
                           const std::string &logFile = {});
    ~ServerProcess();
    ServerProcess(const ServerProcess &) = delete;
    ServerProcess &operator=(const ServerProcess &) = delete;

    std::uint16_t port() const { return m_port; } ///< 0 when it did not start
    pid_t process() const { return m_process; }   ///< -1 when it does not run
    std::string log() const; ///< what it has written to standard error, once it writes no more
    bool logs(const std::string &text) const; ///< whether it writes this to standard error within 20 seconds
    void kill();                              ///< SIGKILL, and waits for the end
    int terminate();                          ///< SIGTERM; returns the exit code

private:
    TempFolder m_folder;
    pid_t m_process = -1;
    std::uint16_t m_port = 0;
};

} // namespace clockwell::server::test
