#pragma once

#include "account/AuthStore.h"
#include "net/APIClient.h"
#include "net/SessionEvents.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"
#include "support/screen/ScreenDriver.h"

#include <gtest/gtest.h>

namespace clockwell::test {

/// An AuthStore connected to a scripted server.
class AuthStoreFixture : public ::testing::Test
{
protected:
    /// The text of a field.
    static QString valueOf(ScreenDriver &screen, const QString &field)
    {
        const auto element = screen.find(field, QAccessible::EditableText);
        return element ? element->object->property("text").toString() : QStringLiteral("(no such field)");
    }

    /// Waits to give something that must not happen the time to happen.
    static void settle(std::chrono::milliseconds time = std::chrono::milliseconds(200))
    {
        spinUntil([] { return false; }, time);
    }

    static APIClient::Options optionsFor(const FakeServer &server)
    {
        APIClient::Options result;
        result.baseURL = server.url(QStringLiteral("/api"));
        return result;
    }

    FakeServer server;
    MemoryTokenStore tokens;
    SessionEvents events;
    APIClient api{optionsFor(server), tokens, events};
    AuthStore auth{api, tokens};
};

} // namespace clockwell::test
