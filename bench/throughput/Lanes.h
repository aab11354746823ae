#pragma once

#include <functional>
#include <future>
#include <vector>

namespace clockwell::bench {

/// Runs `work(lane)` for each lane from 0 on, on a thread of its own; throws what one of them threw, after
/// all have ended.
inline void onAllLanes(int lanes, const std::function<void(int)> &work)
{
    std::vector<std::future<void>> running;
    for (int lane = 0; lane < lanes; ++lane)
        running.push_back(std::async(std::launch::async, [&work, lane] { work(lane); }));
    for (auto &one : running)
        one.wait();
    for (auto &one : running)
        one.get();
}

} // namespace clockwell::bench
