#include "net/ClientFixture.h"
#include "net/FakeNetwork.h"
#include "net/Http2Front.h"
#include "net/RefusingServer.h"

namespace clockwell::test {

namespace {

using Kind = TransportError::Kind;
using namespace std::chrono_literals;

/// A client that reaches the scripted server over HTTP/2.
class Http2 : public ClientTest
{
protected:
    APIClient &start(std::chrono::milliseconds idleLimit = 10s, const QStringList &options = {})
    {
        m_front = std::make_unique<Http2Front>(server.port(), options);
        limit(idleLimit, 40s);
        changeOptions([this](APIClient::Options &client) {
            client.baseURL = m_front->url(QStringLiteral("/api"));
            client.certificateFile = m_front->certificateFile();
            client.reachability = network.factory();
        });
        network.offline = false;
        return client();
    }
    Http2Front &front() { return *m_front; }

    void expectAnswer()
    {
        server.expect("GET", "/api/thing").reply(200, R"({"message":"m"})");
        EXPECT_EQ(await(get()).message, QStringLiteral("m"));
    }

    FakeNetwork network;
    const std::chrono::milliseconds m_shortIdleLimit = 2s;

private:
    std::unique_ptr<Http2Front> m_front;
};

} // namespace

TEST_F(Http2, GetsShareAConnection)
{
    start();
    expectAnswer();
    expectAnswer();
    EXPECT_EQ(server.requests().at(1).header("Via"), "2 nghttpx");
    EXPECT_EQ(front().connections(), 1);
}

TEST_F(Http2, StalledConnectionIsNotReused)
{
    start(m_shortIdleLimit);
    expectAnswer();
    front().stallConnections();
    EXPECT_EQ(transportError(get()), Kind::TimedOut);
    expectAnswer();
    expectAnswer();
    EXPECT_EQ(front().connections(), 2);
}

TEST_F(Http2, StalledSharedConnectionFailsAllItsRequestsAndIsNotReused)
{
    start(m_shortIdleLimit);
    expectAnswer();
    server.expect("GET", "/api/thing").times(2).never();
    const QList inFlight{observe(get()), observe(get())};
    EXPECT_TRUE(server.waitForRequests(3));
    EXPECT_EQ(front().connections(), 1);
    front().stallConnections();
    const QList late{observe(get()), observe(get())};
    for (const auto &call : inFlight + late) {
        EXPECT_TRUE(spinUntil([&] { return call->done; }));
        EXPECT_FALSE(call->value);
    }
    expectAnswer();
    EXPECT_EQ(front().connections(), 2);
}

TEST_F(Http2, GoawayIsNotAnError)
{
    start(10s, {QStringLiteral("--frontend-max-requests=2")});
    for (int i = 0; i < 9; ++i)
        expectAnswer();
    EXPECT_GE(front().connections(), 3);
}

TEST_F(Http2, GoawayWithRequestsInFlightIsNotAnError)
{
    start(10s, {QStringLiteral("--frontend-max-requests=3")});
    for (int round = 0; round < 5; ++round) {
        server.expect("GET", "/api/thing").times(8).reply(200, R"({"message":"m"})");
        QList<std::shared_ptr<Outcome<MessageResponse>>> calls;
        for (int i = 0; i < 8; ++i)
            calls += observe(get());
        for (const auto &call : calls) {
            EXPECT_TRUE(spinUntil([&] { return call->done; }));
            EXPECT_TRUE(call->value);
        }
    }
}

TEST_F(Http2, ConnectionStalledAfterGoawayIsNotReused)
{
    start(m_shortIdleLimit, {QStringLiteral("--frontend-max-requests=1")});
    expectAnswer();
    front().stallConnections();
    spinUntil([] { return false; }, 50ms);
    for (int i = 0; i < 4; ++i) {
        server.expect("GET", "/api/thing").anyNumber().reply(200, R"({"message":"m"})");
        const auto call = observe(get());
        EXPECT_TRUE(spinUntil([&] { return call->done; }));
        EXPECT_TRUE(call->value || i == 0) << i; // the first request may have detected the stalled connection
    }
}

TEST_F(Http2, ConnectionsAreNotReusedAfterAChangeOfTheNetwork)
{
    start();
    expectAnswer();
    front().stallConnections();
    network.change(false);
    expectAnswer();
    EXPECT_EQ(front().connections(), 2);
}

TEST_F(Http2, ConnectionStalledDuringAPostIsNotReused)
{
    start(m_shortIdleLimit);
    expectAnswer();
    server.expect("POST", "/api/thing").never();
    const auto call = observe(post());
    EXPECT_TRUE(server.waitForRequests(2));
    front().stallConnections();
    EXPECT_TRUE(spinUntil([&] { return call->done; }));
    EXPECT_FALSE(call->value);
    expectAnswer();
    EXPECT_EQ(server.requests().size(), 3);
    EXPECT_EQ(front().connections(), 3);
}

TEST_F(Http2, EachPostOpensItsOwnConnectionEvenIfTheKeptOneIsStalled)
{
    start(m_shortIdleLimit);
    expectAnswer();
    front().stallConnections();
    server.expect("POST", "/api/thing").times(2).reply(200, R"({"message":"m"})");
    await(post());
    await(post());
    EXPECT_EQ(server.requests().size(), 3);
    EXPECT_EQ(front().connections(), 3);
    EXPECT_EQ(transportError(get()), Kind::TimedOut);
    expectAnswer();
}

TEST_F(Http2, GetDoesNotShareTheConnectionOfAPost)
{
    start();
    server.expect("POST", "/api/thing").after(1500ms).reply(200, R"({"message":"m"})");
    const auto call = observe(post());
    EXPECT_TRUE(server.waitForRequests(1));
    expectAnswer();
    EXPECT_FALSE(call->done);
    EXPECT_EQ(front().connections(), 2);
    EXPECT_TRUE(spinUntil([&] { return call->done; }));
}

TEST_F(Http2, ConcurrentGetsShareTheFirstConnection)
{
    start();
    server.expect("GET", "/api/thing").times(20).after(50ms).reply(200, R"({"message":"m"})");
    QList<std::shared_ptr<Outcome<MessageResponse>>> calls;
    for (int i = 0; i < 20; ++i)
        calls += observe(get());
    for (const auto &call : calls) {
        EXPECT_TRUE(spinUntil([&] { return call->done; }));
        EXPECT_TRUE(call->value);
    }
    EXPECT_EQ(front().connections(), 1);
}

TEST_F(Http2, InterimRepliesAreSkipped)
{
    start();
    const QByteArray replies = "HTTP/1.1 103 Early Hints\r\nLink: </x>; rel=preload\r\n\r\n"
                               "HTTP/1.1 200 OK\r\nContent-Length: 15\r\n\r\n{\"message\":\"m\"}";
    server.expect("GET", "/api/thing").raw(replies);
    EXPECT_EQ(await(get()).message, QStringLiteral("m"));
    server.expect("POST", "/api/thing").raw(replies);
    EXPECT_EQ(await(post()).message, QStringLiteral("m"));
}

TEST_F(Http2, PostIsSentOnceWhenTheServerRefusesToProcessIt)
{
    const TestCertificate certificate;
    for (const auto refusal : {RefusingServer::Refusal::Stream, RefusingServer::Refusal::Goaway}) {
        RefusingServer refusing(certificate, refusal);
        APIClient::Options refused = options();
        refused.baseURL = refusing.url();
        refused.certificateFile = certificate.certificateFile();
        APIClient other(refused, tokens, events);
        EXPECT_EQ(transportError(other.request<MessageResponse>(
                      QStringLiteral("thing"), QStringLiteral("POST"), {}, std::optional(Greeting{}), true)),
                  Kind::ConnectionLost);
        spinUntil([] { return false; }, 100ms);
        EXPECT_EQ(refusing.requests(), 1);
    }
}

} // namespace clockwell::test
