#include "AccessLog.h"

#include <spdlog/spdlog.h>

#include <algorithm>
#include <array>
#include <random>

namespace clockwell::server {

namespace {
constexpr std::size_t errorLogLimit = 400;
constexpr std::string_view unread = "-";
constexpr std::string_view other = "other";

std::string_view methodToLog(std::string_view method)
{
    static constexpr std::array<std::string_view, 8> known{unread, "GET",    "HEAD",  "POST",
                                                           "PUT",  "DELETE", "PATCH", "OPTIONS"};
    return std::ranges::find(known, method) == known.end() ? other : method;
}

bool isPrintable(char c)
{
    return c >= ' ' && c <= '~';
}

void appendPrintable(std::string &text, char c)
{
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80)
        text += fmt::format("\\x{:02X}", byte);
    else
        text += isPrintable(c) ? c : '?';
}

} // namespace

AccessLog::AccessLog(std::shared_ptr<spdlog::logger> logger, IsOwnPath isOwnPath, OnAnswered onAnswered)
    : m_logger(logger ? std::move(logger) : spdlog::default_logger()),
      m_isOwnPath(std::move(isOwnPath)),
      m_onAnswered(std::move(onAnswered))
{}

std::string_view AccessLog::pathToLog(const std::string &path) const
{
    return path == unread || path == "/health" || (m_isOwnPath && m_isOwnPath(path)) ? path : other;
}

void AccessLog::answered(const std::string &id, std::string_view method, const std::string &path, int status,
                         std::chrono::microseconds duration, std::size_t bytes) const
{
    const AnsweredRequest request{methodToLog(method), pathToLog(path), status, duration};
    if (m_onAnswered)
        m_onAnswered(request);
    const double milliseconds = static_cast<double>(duration.count()) / 1000;
    m_logger->info("event=request id={} method={} path={} status={} durationMs={:.3f} bytes={}", id,
                   request.method, request.path, status, milliseconds, bytes);
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
        if (c == '"' || c == '\\')
            value += '\\';
        quoted = quoted || static_cast<unsigned char>(c) <= ' ' || c == '"' || c == '\\' || c == '=';
        appendPrintable(value, c);
    }
    if (cut)
        value += "...";
    return quoted ? '"' + value + '"' : value;
}

std::string printableAscii(std::string_view text)
{
    if (std::ranges::all_of(text, isPrintable)) // as nearly always
        return std::string{text};
    std::string result;
    for (const char c : text)
        appendPrintable(result, c);
    return result;
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
