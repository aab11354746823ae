#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <sys/resource.h>
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace clockwell::rush {

/// The server program, started on loopback with its database, log and port file in a folder. Killed with the
/// object if it still runs. Throws std::runtime_error.
class ServerChild
{
public:
    /// `descriptors`: the limits with which it starts, which are not those of the load generator.
    ServerChild(std::filesystem::path folder, std::vector<std::string> serveOptions, rlimit descriptors);
    ~ServerChild();
    ServerChild(const ServerChild &) = delete;
    ServerChild &operator=(const ServerChild &) = delete;

    /// Starts it, on the port of the first time, and waits until it answers requests.
    boost::asio::awaitable<void> start(boost::asio::any_io_executor executor);

    void kill();     ///< SIGKILL, and waits for the end
    int terminate(); ///< SIGTERM; the exit status, -1 when it had to be killed after 30 seconds
    bool hasEnded(); ///< by itself

    pid_t process() const { return m_process; }
    boost::asio::ip::tcp::endpoint endpoint() const { return m_endpoint; }
    std::string database() const { return m_folder / "rush.db"; }
    std::string log() const { return m_folder / "rush.log"; }

private:
    void spawn();
    std::uint16_t portInFile() const;

    std::filesystem::path m_folder;
    std::vector<std::string> m_serveOptions;
    rlimit m_descriptors;
    pid_t m_process = -1;
    boost::asio::ip::tcp::endpoint m_endpoint{boost::asio::ip::address_v4::loopback(), 0};
};

} // namespace clockwell::rush
