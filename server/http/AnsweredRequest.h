#pragma once

#include <chrono>
#include <functional>
#include <string_view>

namespace clockwell::server {

/// What may be told of a request once it was answered, in the words of the log: a method or path that the
/// server does not know is "other", one that could not be read "-".
struct AnsweredRequest
{
    std::string_view method;
    std::string_view path;
    int status = 0; ///< 0: the connection was closed without an answer
    std::chrono::microseconds duration{0};
};

/// Called on the I/O thread; quick, and throws nothing.
using OnAnswered = std::function<void(const AnsweredRequest &)>;

} // namespace clockwell::server
