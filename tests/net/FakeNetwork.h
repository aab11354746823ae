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

/// Controls the reachability that the client sees.
struct FakeNetwork
{
    std::atomic<bool> offline = true;
    std::atomic<FakeReachability *> reachability = nullptr;

    std::function<std::unique_ptr<Reachability>()> factory()
    {
        return [this] {
            auto created = std::make_unique<FakeReachability>(offline);
            reachability = created.get();
            return created;
        };
    }
    void change(bool nowOffline)
    {
        offline = nowOffline;
        Q_EMIT reachability.load()->changed();
    }
};

} // namespace clockwell::test
