#pragma once

#include "net/Reachability.h"

#include <atomic>
#include <functional>
#include <memory>

namespace clockwell::test {

class FakeReachability final : public Reachability
{
public:
    explicit FakeReachability(std::atomic<bool> &offline) : m_offline(offline) {}
    bool isOffline() const override { return m_offline; }

private:
    std::atomic<bool> &m_offline;
};

/// A switch that the client's reachability follows.
struct FakeNetwork
{
    std::atomic<bool> offline = true;
    std::atomic<FakeReachability *> seen = nullptr;

    std::function<std::unique_ptr<Reachability>()> factory()
    {
        return [this] {
            auto made = std::make_unique<FakeReachability>(offline);
            seen = made.get();
            return made;
        };
    }
    void change(bool nowOffline)
    {
        offline = nowOffline;
        Q_EMIT seen.load()->changed();
    }
};

} // namespace clockwell::test
