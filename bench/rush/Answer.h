#pragma once

#include <string>

namespace clockwell::rush {

enum class Failure { none, unreachable, closed, timedOut };

/// What came back for a request.
struct Answer
{
    int status = 0; ///< 0: no whole answer came
    Failure failure = Failure::none;
    bool begun = false; ///< something of an answer came
    bool keepAlive = false;
    std::string body{};

    bool ok() const { return status / 100 == 2; }
};

} // namespace clockwell::rush
