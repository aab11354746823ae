#pragma once

#include <chrono>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace clockwell::server {

/// A refusal that is told to the client: {"statusCode", "error", "message"}. `error` is for programs,
/// `message` for the person in front of the app; failures of validation have one message for each broken
/// rule.
class ApiError : public std::exception
{
public:
    ApiError(int status, std::string error, std::string message)
        : ApiError(status, std::move(error), std::vector<std::string>{std::move(message)})
    {}
    /// `messages` is not empty.
    ApiError(int status, std::string error, std::vector<std::string> messages)
        : m_status(status), m_error(std::move(error)), m_messages(std::move(messages))
    {}

    /// Adds a response header.
    ApiError &with(std::string name, std::string value)
    {
        m_headers.emplace_back(std::move(name), std::move(value));
        return *this;
    }
    ApiError &retryAfter(std::chrono::seconds wait)
    {
        return with("Retry-After", std::to_string(wait.count()));
    }

    int status() const { return m_status; }
    const std::string &error() const { return m_error; }
    const std::vector<std::string> &messages() const { return m_messages; }
    const std::vector<std::pair<std::string, std::string>> &headers() const { return m_headers; }
    const char *what() const noexcept override { return m_messages.front().c_str(); }

private:
    int m_status;
    std::string m_error;
    std::vector<std::string> m_messages;
    std::vector<std::pair<std::string, std::string>> m_headers;
};

} // namespace clockwell::server
