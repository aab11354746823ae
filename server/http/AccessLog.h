#pragma once

#include "Message.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace spdlog {
class logger;
}

namespace clockwell::server {

/// Writes one line of key=value pairs for each answered request. Nothing that could identify a person or open
/// an account gets here: no query, header, body or address. Thread-safe if the logger is.
class AccessLog
{
public:
    /// Null: spdlog's default logger.
    explicit AccessLog(std::shared_ptr<spdlog::logger> logger);

    /// `method` and `path` are "-" for a request that could not be read that far.
    void answered(const std::string &id, std::string_view method, std::string_view path, int status,
                  std::chrono::microseconds duration, std::size_t bytes) const;
    /// A handler threw; `what` says what, in the words of our own code or of a library.
    void handlerFailed(const std::string &id, std::string_view what) const;
    /// Something went wrong outside of any request.
    void trouble(std::string_view event, std::string_view what) const;
    void notice(std::string_view event, std::string_view what) const;

private:
    std::shared_ptr<spdlog::logger> m_logger;
};

/// `text` cut to `limit` bytes and, where it has blanks, quotes or backslashes, in quotes: it stays one value
/// in a line of key=value pairs.
std::string logValue(std::string_view text, std::size_t limit);

/// Ids of requests: unique over restarts in practice, short, increasing within a process. Not thread-safe.
class RequestIds
{
public:
    RequestIds();
    std::string next();

private:
    std::string m_prefix;
    unsigned long m_count = 0;
};

} // namespace clockwell::server
