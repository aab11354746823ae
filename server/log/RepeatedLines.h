#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

/// Sums up lines that an attack or a failure repeats: refused requests and warnings. Of each kind the first
/// few pass; then only their number is told, once in an interval, until an interval goes by without any.
/// Never summed up is what names an employee or a number of messages. Not thread-safe; its memory is bounded.
class RepeatedLines
{
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::size_t shown = 10; ///< lines of a kind
    static constexpr std::chrono::seconds interval{60};

    /// Whether a line of key=value pairs is to be written; else it is counted.
    bool admits(std::string_view line, bool isWarning, Time now);

    /// What was counted and not yet told in intervals that are over by `now`, as lines.
    std::vector<std::string> summaries(Time now);

private:
    struct Count
    {
        Time begin;
        std::size_t written = 0;
        std::size_t hidden = 0;
    };

    std::map<std::string, Count, std::less<>> m_counts; // by kind
    Time m_nextLook{};
};

} // namespace clockwell::server
