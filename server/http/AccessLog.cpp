#include "AccessLog.h"

#include <spdlog/spdlog.h>

#include <random>

namespace clockwell::server {

namespace {
constexpr std::size_t methodLogLimit = 16;
constexpr std::size_t pathLogLimit = 200;
constexpr std::size_t errorLogLimit = 400;
} // namespace

AccessLog::AccessLog(std::shared_ptr<spdlog::logger> logger)
    : m_logger(logger ? std::move(logger) : spdlog::default_logger())
{}

void AccessLog::answered(const std::string &id, std::string_view method, std::string_view path, int status,
                         std::chrono::microseconds duration, std::size_t bytes) const
{
    const double milliseconds = static_cast<double>(duration.count()) / 1000;
    m_logger->info("event=request id={} method={} path={} status={} durationMs={:.3f} bytes={}", id,
                   logValue(method, methodLogLimit), logValue(path, pathLogLimit), status, milliseconds,
                   bytes);
}

void AccessLog::handlerFailed(const std::string &id, std::string_view what) const
{
    m_logger->error("event=handlerFailed id={} what={}", id, logValue(what, errorLogLimit));
}

void AccessLog::trouble(std::string_view event, std::string_view what) const
{
    m_logger->warn("event={} what={}", event, logValue(what, errorLogLimit));
}

void AccessLog::notice(std::string_view event, std::string_view what) const
{
    m_logger->info("event={} what={}", event, logValue(what, errorLogLimit));
}

std::string logValue(std::string_view text, std::size_t limit)
{
    const bool cut = text.size() > limit;
    text = text.substr(0, limit);
    std::string value;
    bool quoted = text.empty();
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            value += '\\';
        quoted = quoted || byte <= 0x20 || c == '"' || c == '\\' || c == '=';
        value += byte < 0x20 || byte == 0x7F ? '?' : c;
    }
    if (cut)
        value += "...";
    return quoted ? '"' + value + '"' : value;
}

RequestIds::RequestIds()
{
    std::random_device device;
    m_prefix = fmt::format("{:08x}-", device());
}

std::string RequestIds::next()
{
    return m_prefix + std::to_string(++m_count);
}

} // namespace clockwell::server
