#pragma once

#include <memory>
#include <thread>

namespace spdlog {
class logger;
}

namespace clockwell::server {

enum class LogFormat {
    Text,     ///< time, level and text, in printable ASCII
    JsonLines ///< see jsonLine()
};

/// Makes spdlog's default logger one that never holds up who logs, for as long as this exists: lines wait for
/// a thread of their own that writes them to standard error. When its reader pauses or has gone, the oldest
/// lines are lost; how many is said in the next line that can be written. What is repeated is summed up, and
/// no byte but printable ASCII is written, in either format. From here on the process ignores SIGPIPE.
///
/// Make it after signals were blocked and before anything that logs.
class ServiceLog
{
public:
    explicit ServiceLog(LogFormat format = LogFormat::Text);
    ~ServiceLog(); ///< writes what waits, within two seconds; then the earlier default logger is back
    ServiceLog(const ServiceLog &) = delete;
    ServiceLog &operator=(const ServiceLog &) = delete;

private:
    class Sink;

    std::shared_ptr<spdlog::logger> m_previous;
    std::shared_ptr<Sink> m_sink;
    std::jthread m_ticker; // so that a summary need not wait for another line
};

} // namespace clockwell::server
