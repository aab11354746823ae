#pragma once

#include <spdlog/sinks/ringbuffer_sink.h>
#include <spdlog/spdlog.h>

#include <cstddef>
#include <memory>
#include <string>

namespace clockwell::server::test {

/// Collects everything that is logged while it exists, up to 10,000 lines.
class LogCatcher
{
public:
    LogCatcher() : m_previous(spdlog::default_logger())
    {
        auto logger = std::make_shared<spdlog::logger>("caught", m_sink);
        logger->set_level(spdlog::level::trace);
        spdlog::set_default_logger(logger);
    }
    ~LogCatcher() { spdlog::set_default_logger(m_previous); }
    LogCatcher(const LogCatcher &) = delete;
    LogCatcher &operator=(const LogCatcher &) = delete;

    /// Also while other threads log.
    std::string text() const
    {
        std::string text;
        for (const std::string &line : m_sink->last_formatted())
            text += line;
        return text;
    }

private:
    static constexpr std::size_t mostLines = 10'000;

    std::shared_ptr<spdlog::logger> m_previous;
    std::shared_ptr<spdlog::sinks::ringbuffer_sink_mt> m_sink =
        std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(mostLines);
};

} // namespace clockwell::server::test
