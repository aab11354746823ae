#pragma once

#include "AnsweredRequest.h"
#include "Message.h"

#include <chrono>
#include <cstddef>
#include <functional>
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
    /// Says whether a path is one of the server's own.
    using IsOwnPath = std::function<bool(const std::string &path)>;

    /// A null logger: spdlog's default one. A null `isOwnPath`: no path but "/health" is the server's own.
    /// `onAnswered`, unless it is null, gets the facts of each line about an answered request.
    explicit AccessLog(std::shared_ptr<spdlog::logger> logger, IsOwnPath isOwnPath = {},
                       OnAnswered onAnswered = {});

    /// `method` and `path` are "-" for a request that could not be read that far. Others than those that the
    /// server knows are logged as "other": in a path that somebody made up can stand anything, also a token
    /// or an e-mail address.
    void answered(const std::string &id, std::string_view method, const std::string &path, int status,
                  std::chrono::microseconds duration, std::size_t bytes) const;
    /// A handler threw; `what` says what, in the words of our own code or of a library.
    void handlerFailed(const std::string &id, std::string_view what) const;
    /// Something went wrong outside of any request.
    void trouble(std::string_view event, std::string_view what) const;
    void notice(std::string_view event, std::string_view what) const;

private:
    std::string_view pathToLog(const std::string &path) const;

    std::shared_ptr<spdlog::logger> m_logger;
    IsOwnPath m_isOwnPath;
    OnAnswered m_onAnswered;
};

/// `text` cut to `limit` bytes, in printable ASCII and, where it has blanks, quotes or backslashes, in
/// quotes: it stays one value in a line of key=value pairs.
std::string logValue(std::string_view text, std::size_t limit);

/// Control characters become '?', and bytes beyond ASCII "\xE2": neither they nor the direction marks and
/// invisible characters of Unicode reach a terminal.
std::string printableAscii(std::string_view text);

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
