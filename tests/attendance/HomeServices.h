#pragma once

#include "Replies.h"
#include "ScriptedLocationSource.h"
#include "attendance/AttendanceStore.h"
#include "attendance/LocationManager.h"
#include "net/APIClient.h"
#include "net/SessionEvents.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"

#include <memory>

namespace clockwell::test {

/// The services that the attendance screens need: the real store and client with a scripted server, and a
/// location service controlled by the test, which answers at once unless told otherwise.
struct HomeServices
{
    HomeServices()
    {
        auto made = std::make_unique<ScriptedLocationSource>();
        source = made.get();
        source->immediate = Fix{12.9715987, 77.5945627, 8.5};
        location = std::make_unique<LocationManager>(std::move(made));
    }
    APIClient::Options options() const
    {
        APIClient::Options result;
        result.baseURL = server.url(QStringLiteral("/api"));
        return result;
    }
    void expectToday(const QByteArray &reply)
    {
        server.expect("GET", "/api/attendance/today").reply(200, reply);
    }
    void expectDistance(const QByteArray &reply)
    {
        server.expect("GET", "/api/attendance/distance").reply(200, reply);
    }
    bool isIdle() const { return !store->loadingToday() && !store->punching() && !store->checkingDistance(); }
    /// Waits until that many requests have arrived and no operation is running.
    bool settle(int requests)
    {
        return spinUntil([&] { return server.requests().size() >= requests && isIdle(); });
    }
    QVariantMap properties(const QString &fullName) const
    {
        return {{QStringLiteral("attendance"), QVariant::fromValue(store.get())},
                {QStringLiteral("location"), QVariant::fromValue(location.get())},
                {QStringLiteral("fullName"), fullName}};
    }

    FakeServer server;
    MemoryTokenStore tokens{QStringLiteral("a1"), QStringLiteral("r1")};
    SessionEvents events;
    APIClient api{options(), tokens, events};
    std::unique_ptr<LocationManager> location;
    ScriptedLocationSource *source = nullptr;
    std::unique_ptr<AttendanceStore> store =
        std::make_unique<AttendanceStore>(api, [] { return QStringLiteral("DEVICE-1"); });
};

} // namespace clockwell::test
