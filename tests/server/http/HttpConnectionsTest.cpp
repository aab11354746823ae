#include "TestServer.h"
#include "TlsClient.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

namespace clockwell::server {

using std::chrono::milliseconds;

namespace {

constexpr const char *elsewhere = "127.0.0.2";

/// Nobody is closed for being slow: only a newcomer can be the reason.
HttpOptions patientOptions(std::size_t connections, std::size_t perNetwork)
{
    HttpOptions options = TestServer::usualOptions();
    options.maxConnections = connections;
    options.connectionsPerNetwork = perNetwork;
    options.headDeadline = options.requestDeadline = options.idleDeadline = std::chrono::minutes(1);
    return options;
}

bool isServed(RawClient &client, std::string_view request)
{
    return client.exchange(request).status == 200;
}

} // namespace

TEST(HttpConnectionsTest, LongestIdleOneGivesWayToANewcomer)
{
    TestServer server(TestServer::echo, patientOptions(3, 3));
    RawClient first(server.port()), second(server.port()), third(server.port());
    for (RawClient *client : {&first, &second, &third, &first})
        ASSERT_TRUE(isServed(*client, get("/")));
    RawClient newcomer(server.port());
    EXPECT_TRUE(isServed(newcomer, get("/")));
    EXPECT_TRUE(second.closesWithin(RawClient::patience)) << "the first one has been used since";
    for (RawClient *client : {&first, &third, &newcomer})
        EXPECT_TRUE(isServed(*client, get("/")));
}

TEST(HttpConnectionsTest, ConnectionsWithoutARequestGiveWayToThousandsOfNewcomers)
{
    TestServer server(TestServer::echo, patientOptions(20, 20));
    std::vector<std::unique_ptr<RawClient>> silent;
    for (int i = 0; i < 300; ++i) {
        silent.push_back(std::make_unique<RawClient>(server.port()));
        ASSERT_TRUE(i % 10 != 0 || isServed(*silent.back(), get("/"))) << i;
    }
}

TEST(HttpConnectionsTest, HalfSentRequestsGiveWayToo)
{
    TestServer server(TestServer::echo, patientOptions(2, 2));
    RawClient head(server.port()), body(server.port());
    head.send("GET / HTTP/1.1\r\nHost: x\r\n");
    body.send("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 9\r\n\r\nhalf");
    std::this_thread::sleep_for(milliseconds(50));
    RawClient one(server.port()), two(server.port());
    EXPECT_TRUE(isServed(one, get("/")));
    EXPECT_TRUE(isServed(two, get("/")));
    EXPECT_EQ(head.receiveAll(), "");
    EXPECT_EQ(body.receiveAll(), "");
}

TEST(HttpConnectionsTest, HandshakesThatDoNotHappenGiveWay)
{
    const TestCertificate certificate;
    HttpOptions options = patientOptions(2, 2);
    options.certificateFile = certificate.certificateFile();
    options.privateKeyFile = certificate.keyFile();
    TestServer server(TestServer::echo, options);
    const RawClient silent(server.port()), alsoSilent(server.port());
    for (int i = 0; i < 3; ++i) {
        TlsClient client(server.port(), certificate.certificateFile(), {});
        ASSERT_TRUE(client.connected());
        bool clean = false;
        client.send(get("/", "Connection: close\r\n"));
        EXPECT_TRUE(client.receiveAll(clean).starts_with("HTTP/1.1 200 "));
    }
}

TEST(HttpConnectionsTest, AddressWithItsShareClosesItsOwnLongestIdle)
{
    TestServer server(TestServer::echo, patientOptions(10, 2));
    RawClient other(server.port());
    ASSERT_TRUE(isServed(other, get("/")));
    RawClient first(server.port(), 0, elsewhere), second(server.port(), 0, elsewhere);
    ASSERT_TRUE(isServed(first, get("/")));
    ASSERT_TRUE(isServed(second, get("/")));
    RawClient third(server.port(), 0, elsewhere);
    EXPECT_TRUE(isServed(third, get("/")));
    EXPECT_TRUE(first.closesWithin(RawClient::patience));
    EXPECT_TRUE(isServed(second, get("/")));
    EXPECT_TRUE(isServed(other, get("/"))) << "it was idle for longer, at another address";
}

/// All regular connections are at work.
class BusyConnectionsTest : public testing::Test
{
protected:
    explicit BusyConnectionsTest(std::size_t connections = 2)
        : m_server(
              [this](const Request &request) {
                  if (request.path == "/slow") {
                      ++m_running;
                      m_gate.pass();
                  }
                  return TestServer::echo(request);
              },
              options(connections), TestServer::byPath())
    {
        for (RawClient *client : {&m_one, &m_two})
            client->send(get("/slow"));
        EXPECT_TRUE(eventually([this] { return m_running == 2; }));
    }
    ~BusyConnectionsTest() override { m_gate.open(); }

    static HttpOptions options(std::size_t connections)
    {
        HttpOptions options = patientOptions(connections, 2);
        options.guestConnections = 3;
        options.signedInThreads = 3; // one more than are at work
        return options;
    }

    Gate m_gate;
    std::atomic<int> m_running{0};
    TestServer m_server;
    RawClient m_one{m_server.port()}, m_two{m_server.port()};
};

TEST_F(BusyConnectionsTest, NewcomerIsToldWhenToComeBack)
{
    RawClient newcomer(m_server.port(), 0, elsewhere);
    const auto response = newcomer.exchange(get("/"));
    EXPECT_EQ(response.status, 503);
    EXPECT_NE(response.body.find("\"UNAVAILABLE\""), std::string::npos);
    EXPECT_EQ(response.headers.at("retry-after"), "1");
    EXPECT_TRUE(newcomer.closesWithin(RawClient::patience));
}

TEST_F(BusyConnectionsTest, RenewalOfANewcomerIsServedAllTheSame)
{
    RawClient newcomer(m_server.port());
    const auto response = newcomer.exchange(post("/renewal", "token"));
    EXPECT_EQ(response.status, 200);
    EXPECT_NE(response.body.find("body=token\n"), std::string::npos);
    EXPECT_EQ(response.headers.at("connection"), "close");
    EXPECT_TRUE(newcomer.closesWithin(RawClient::patience));
}

TEST_F(BusyConnectionsTest, HealthOfANewcomerIsServedAllTheSame)
{
    EXPECT_EQ(RawClient(m_server.port()).exchange(get("/health")).status, 200);
}

TEST_F(BusyConnectionsTest, GuestsAreFewAndTheOneThatWaitsLongestGivesWay)
{
    std::vector<std::unique_ptr<RawClient>> silent;
    for (int i = 0; i < 20; ++i)
        silent.push_back(std::make_unique<RawClient>(m_server.port()));
    RawClient newcomer(m_server.port());
    EXPECT_EQ(newcomer.exchange(post("/renewal", "token")).status, 200);
    for (int i = 0; i < 17; ++i)
        EXPECT_EQ(silent[static_cast<std::size_t>(i)]->receiveAll(), "") << i;
}

TEST_F(BusyConnectionsTest, FreedPlacesCanBeTaken)
{
    m_gate.open();
    EXPECT_EQ(m_one.receive().status, 200);
    EXPECT_EQ(m_two.receive().status, 200);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(RawClient(m_server.port()).exchange(get("/")).status, 200);
}

/// There is room, but not for this address.
class BusyAddressTest : public BusyConnectionsTest
{
protected:
    BusyAddressTest() : BusyConnectionsTest(10) {}
};

TEST_F(BusyAddressTest, NewcomerGets503AndOtherAddressesAreServed)
{
    EXPECT_EQ(RawClient(m_server.port()).exchange(get("/")).status, 503);
    EXPECT_EQ(RawClient(m_server.port()).exchange(post("/renewal", "token")).status, 200);
    EXPECT_EQ(RawClient(m_server.port(), 0, elsewhere).exchange(get("/")).status, 200);
}

} // namespace clockwell::server
