#pragma once

#include "net/APIClient.h"
#include "net/SessionEvents.h"
#include "net/TokenStore.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace clockwell::test {

struct Greeting
{
    QString text;
};
BOOST_DESCRIBE_STRUCT(Greeting, (), (text))

/// A client against a scripted server, with tokens "a1" and "r1" stored.
class ClientTest : public testing::Test
{
protected:
    APIClient::Options options() const
    {
        APIClient::Options options;
        options.baseURL = server.url(QStringLiteral("/api"));
        return options;
    }

    /// Changes the options of client(); call it before the first use of client().
    void changeOptions(const std::function<void(APIClient::Options &)> &change)
    {
        if (!m_options)
            m_options = options();
        change(*m_options);
    }
    void limit(std::chrono::milliseconds idle, std::chrono::milliseconds total)
    {
        changeOptions([=](APIClient::Options &options) {
            options.idleLimit = idle;
            options.totalLimit = total;
        });
    }

    APIClient &client()
    {
        if (!m_client)
            m_client = std::make_unique<APIClient>(m_options.value_or(options()), tokens, events);
        return *m_client;
    }
    void destroyClient() { m_client.reset(); }

    template <class T = MessageResponse>
    QCoro::Task<T> get(const char *path = "thing", bool authorized = true, bool isRetry = false)
    {
        return client().request<T>(QString::fromUtf8(path), QStringLiteral("GET"), {}, std::nullopt,
                                   authorized, isRetry);
    }

    template <class T = MessageResponse>
    QCoro::Task<T> post(const char *path = "thing", bool authorized = true)
    {
        return client().request<T>(QString::fromUtf8(path), QStringLiteral("POST"), {},
                                   std::optional(Greeting{QStringLiteral("hi")}), authorized);
    }

    /// Checks that the next request succeeds, whatever happened before.
    void expectUsable()
    {
        server.expect("GET", "/api/after").reply(200, R"({"message":"fine"})");
        EXPECT_EQ(await(get("after")).message, QStringLiteral("fine"));
    }

    TransportError::Kind transportError(QCoro::Task<MessageResponse> task)
    {
        return awaitError<TransportError>(std::move(task)).kind;
    }

    FakeServer server;
    MemoryTokenStore tokens{QStringLiteral("a1"), QStringLiteral("r1")};
    SessionEvents events;

private:
    std::optional<APIClient::Options> m_options;
    std::unique_ptr<APIClient> m_client;
};

inline const QByteArray newTokens = R"({"accessToken":"a2","refreshToken":"r2"})";

} // namespace clockwell::test
