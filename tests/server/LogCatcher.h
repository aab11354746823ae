#pragma once

#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <sstream>
#include <string>

namespace clockwell::server::test {

/// Collects everything that is logged while it exists.
class LogCatcher
{
public:
    LogCatcher() : m_previous(spdlog::default_logger())
    {
        auto sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(m_stream);
        auto logger = std::make_shared<spdlog::logger>("caught", sink);
        logger->set_level(spdlog::level::trace);
        spdlog::set_default_logger(logger);
    }
    ~LogCatcher() { spdlog::set_default_logger(m_previous); }
    LogCatcher(const LogCatcher &) = delete;
    LogCatcher &operator=(const LogCatcher &) = delete;

    std::string text() const { return m_stream.str(); }

private:
    std::shared_ptr<spdlog::logger> m_previous;
    std::ostringstream m_stream;
};

} // namespace clockwell::server::test
