#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace clockwell::bench {

using Clock = std::chrono::steady_clock;

/// Whether this run only has to show that the benchmark works: one round, and no limit is judged.
inline bool brief()
{
    return std::getenv("CLOCKWELL_BENCH_BRIEF") != nullptr;
}

/// How many rounds to measure where `full` give a steady median.
inline int roundsOf(int full)
{
    return brief() ? 1 : full;
}

inline double secondsOf(const std::function<void()> &work)
{
    const Clock::time_point start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// How many of `count` things a second are done when `work` does them all.
inline double perSecond(int count, const std::function<void()> &work)
{
    return count / secondsOf(work);
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The median time of `first` over that of `second`, of so many rounds of a full run. Their runs alternate,
/// so that whatever else the machine does meets both.
inline double ratioOf(const std::function<void()> &first, const std::function<void()> &second, int fullRounds)
{
    const int rounds = roundsOf(fullRounds);
    first();
    second();
    std::vector<double> firstTimes;
    std::vector<double> secondTimes;
    for (int i = 0; i < rounds; ++i) {
        firstTimes.push_back(secondsOf(first));
        secondTimes.push_back(secondsOf(second));
    }
    return median(firstTimes) / median(secondTimes);
}

/// Prints the line that the benchmark is read by; the program's exit status.
inline int report(const char *name, double value, bool atLeast, double limit)
{
    std::printf("ratio %s %.2f (limit %s %.2f)\n", name, value, atLeast ? ">=" : "<=", limit);
    return brief() || (atLeast ? value >= limit : value <= limit) ? 0 : 1;
}

} // namespace clockwell::bench
