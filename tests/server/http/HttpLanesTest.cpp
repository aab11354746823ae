#include "TestServer.h"
#include "TlsClient.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace clockwell::server {

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

using Clients = std::vector<std::unique_ptr<RawClient>>;

/// Statuses of the answers, in ascending order; 0 for a connection that ended without one.
std::vector<int> statuses(const Clients &clients)
{
    std::vector<int> all;
    for (const auto &client : clients)
        all.push_back(client->receive().status);
    std::sort(all.begin(), all.end());
    return all;
}

} // namespace

/// Requests whose path ends in "slow" wait for the gate.
class HttpLanesTest : public testing::Test
{
protected:
    ~HttpLanesTest() override { gate.open(); }

    static HttpOptions options()
    {
        HttpOptions options = TestServer::usualOptions();
        options.renewalThreads = options.signedInThreads = options.passwordThreads = 1;
        return options;
    }

    Handler handler()
    {
        return [this](const Request &request) {
            {
                const std::lock_guard lock(m_lock);
                m_begun.push_back(request.body);
            }
            if (request.path.ends_with("slow"))
                gate.pass();
            return TestServer::echo(request);
        };
    }

    /// The bodies of the requests that were begun, in that order.
    std::vector<std::string> begun()
    {
        const std::lock_guard lock(m_lock);
        return m_begun;
    }

    /// Sends a request that keeps the only thread of its lane until the gate is opened.
    std::unique_ptr<RawClient> occupy(const TestServer &server, const std::string &path)
    {
        auto client = std::make_unique<RawClient>(server.port());
        const std::size_t before = begun().size();
        client->send(post(path, "occupant"));
        EXPECT_TRUE(eventually([&] { return begun().size() == before + 1; }));
        return client;
    }

    /// Sends a request that has to wait. The one connection after the other is read in that order.
    static std::unique_ptr<RawClient> queue(const TestServer &server, const std::string &path,
                                            const std::string &body, const char *from = "127.0.0.1")
    {
        auto client = std::make_unique<RawClient>(server.port(), 0, from);
        client->send(post(path, body));
        // Answered by the same thread: what was sent before has been read by then.
        EXPECT_EQ(RawClient(server.port()).exchange(get("/health")).status, 200);
        return client;
    }

    Gate gate;

private:
    std::mutex m_lock;
    std::vector<std::string> m_begun;
};

TEST_F(HttpLanesTest, NoLaneWaitsForAnother)
{
    TestServer server(handler(), options(), TestServer::byPath());
    const auto password = occupy(server, "/password/slow");
    EXPECT_EQ(RawClient(server.port()).exchange(get("/")).status, 200);
    const auto signedIn = occupy(server, "/slow");
    EXPECT_EQ(RawClient(server.port()).exchange(get("/renewal")).status, 200);
    const auto renewal = occupy(server, "/renewal/slow");
    gate.open();
    for (const auto *client : {&password, &signedIn, &renewal})
        EXPECT_EQ((*client)->receive().status, 200);
}

TEST_F(HttpLanesTest, RenewalsAndTheSignedInAreNeverRefusedForWantOfRoom)
{
    TestServer server(handler(), options(), TestServer::byPath());
    const auto renewal = occupy(server, "/renewal/slow"), signedIn = occupy(server, "/slow");
    Clients waiting;
    for (int i = 0; i < 600; ++i) {
        waiting.push_back(std::make_unique<RawClient>(server.port()));
        waiting.back()->send(post(i % 2 == 0 ? "/renewal" : "/", "x"));
    }
    gate.open();
    EXPECT_EQ(statuses(waiting), std::vector<int>(600, 200));
}

TEST_F(HttpLanesTest, PasswordsOfOneAddressAreServedInTurnWithThoseOfOthers)
{
    TestServer server(handler(), options(), TestServer::byPath());
    const auto occupant = occupy(server, "/password/slow");
    Clients waiting;
    for (const char *body : {"1", "2", "3", "4"})
        waiting.push_back(queue(server, "/password", body));
    waiting.push_back(queue(server, "/password", "other", "127.0.0.2"));
    gate.open();
    EXPECT_EQ(statuses(waiting), std::vector<int>(5, 200));
    EXPECT_EQ(begun(), (std::vector<std::string>{"occupant", "1", "other", "2", "3", "4"}));
}

TEST_F(HttpLanesTest, AddressMayHaveOnlySoManyPasswordsWaiting)
{
    HttpOptions narrow = options();
    narrow.passwordsPerNetwork = 2;
    TestServer server(handler(), narrow, TestServer::byPath());
    const auto occupant = occupy(server, "/password/slow");
    const auto one = queue(server, "/password", "1"), two = queue(server, "/password", "2");
    RawClient third(server.port());
    const auto refusal = third.exchange(post("/password", "3"));
    EXPECT_EQ(refusal.status, 503);
    EXPECT_NE(refusal.body.find(R"("error":"BUSY")"), std::string::npos);
    EXPECT_GE(std::stoi(refusal.headers.at("retry-after")), 1);
    const auto other = queue(server, "/password", "4", "127.0.0.2");
    gate.open();
    for (const auto *client : {&one, &two, &other})
        EXPECT_EQ((*client)->receive().status, 200);
    EXPECT_TRUE(eventually([&third] { return third.exchange(post("/password", "5")).status == 200; }))
        << "the connection goes on";
}

TEST_F(HttpLanesTest, AccountMayHaveOnlySoManyPasswordsWaiting)
{
    HttpOptions narrow = options();
    narrow.passwordsPerAccount = 2;
    TestServer server(handler(), narrow, TestServer::byPath());
    const auto occupant = occupy(server, "/password/slow");
    const auto one = queue(server, "/password", "kim"), two = queue(server, "/password", "kim", "127.0.0.2");
    EXPECT_EQ(RawClient(server.port()).exchange(post("/password", "kim")).status, 503);
    const auto other = queue(server, "/password", "robin"), nobody = queue(server, "/password", "");
    const auto alsoNobody = queue(server, "/password", ""), stillNobody = queue(server, "/password", "");
    gate.open();
    for (const auto *client : {&one, &two, &other, &nobody, &alsoNobody, &stillNobody})
        EXPECT_EQ((*client)->receive().status, 200);
}

TEST_F(HttpLanesTest, OwnerGetsAPlaceWhileStrangersElsewhereHoldAllOfTheAccounts)
{
    HttpOptions narrow = options();
    narrow.passwordsPerAccount = 2;
    TestServer server(handler(), narrow, TestServer::byPath());
    const auto occupant = occupy(server, "/password/slow");
    const auto one = queue(server, "/password", "kim"), two = queue(server, "/password", "kim", "127.0.0.2");
    const auto owner = queue(server, "/password", "kim", "127.0.0.3");
    EXPECT_EQ(RawClient(server.port(), 0, "127.0.0.3").exchange(post("/password", "kim")).status, 503);
    gate.open();
    for (const auto *client : {&one, &two, &owner})
        EXPECT_EQ((*client)->receive().status, 200);
}

TEST_F(HttpLanesTest, PasswordsThatWouldWaitTooLongAreRefusedAtOnce)
{
    HttpOptions impatient = options();
    impatient.passwordWait = milliseconds(400);
    const auto slow = [](const Request &request) {
        std::this_thread::sleep_for(milliseconds(request.path == "/password" ? 60 : 0));
        return TestServer::echo(request);
    };
    TestServer server(slow, impatient, TestServer::byPath());
    Clients clients;
    for (int i = 0; i < 40; ++i) {
        clients.push_back(std::make_unique<RawClient>(server.port()));
        clients.back()->send(post("/password", ""));
    }
    const auto all = statuses(clients);
    EXPECT_GE(std::count(all.begin(), all.end(), 200), 4);
    EXPECT_GE(std::count(all.begin(), all.end(), 503), 10);
    EXPECT_EQ(std::count(all.begin(), all.end(), 200) + std::count(all.begin(), all.end(), 503), 40);
}

TEST_F(HttpLanesTest, QuickRequestsThatTheEstimateTookForSlowOnesAreLetInAgain)
{
    HttpOptions impatient = options();
    impatient.passwordWait = seconds(1);
    TestServer server(handler(), impatient, TestServer::byPath());
    RawClient client(server.port());
    for (int i = 0; i < 100; ++i) // teaches it that they take no time
        ASSERT_EQ(client.exchange(post("/password", "")).status, 200);
    const auto occupant = occupy(server, "/password/slow");
    Clients waiting;
    for (int i = 0; i < 200; ++i)
        waiting.push_back(queue(server, "/password", ""));
    gate.open();
    EXPECT_EQ(statuses(waiting), std::vector<int>(200, 200));
}

TEST_F(HttpLanesTest, PasswordsAreWorkedOnAtLowPriority)
{
    const auto priority = [](const Request &) {
        const int niceness = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
        return Response{200, std::to_string(niceness), "text/plain", {}};
    };
    TestServer server(priority, options(), TestServer::byPath());
    const int own = getpriority(PRIO_PROCESS, 0);
    for (const char *path : {"/", "/renewal"})
        EXPECT_EQ(RawClient(server.port()).exchange(get(path)).body, std::to_string(own)) << path;
    EXPECT_EQ(RawClient(server.port()).exchange(get("/password")).body,
              std::to_string(std::min(own + 10, 19)));
}

TEST_F(HttpLanesTest, HalfABodyTakesNoWorker)
{
    TestServer server(handler(), options(), TestServer::byPath());
    RawClient half(server.port());
    half.send("POST /password HTTP/1.1\r\nHost: x\r\nContent-Length: 16000\r\n\r\n" +
              std::string(15'000, 'b'));
    EXPECT_EQ(RawClient(server.port()).exchange(post("/password", "whole")).status, 200);
    EXPECT_EQ(begun(), std::vector<std::string>{"whole"});
}

TEST_F(HttpLanesTest, RenewalThatDoesNotArriveWholeIsLeftUnanswered)
{
    HttpOptions hasty = options();
    hasty.requestDeadline = milliseconds(600);
    TestServer server(handler(), hasty, TestServer::byPath());
    RawClient slow(server.port()), ended(server.port());
    slow.send("POST /renewal HTTP/1.1\r\nHost: x\r\nContent-Length: 9\r\n\r\nhalf");
    ended.send("POST /renewal HTTP/1.1\r\nHost: x\r\nContent-Length: 9\r\n\r\nhalf");
    ended.endOutput();
    EXPECT_EQ(slow.receiveAll(), "");
    EXPECT_EQ(ended.receiveAll(), "");
    EXPECT_EQ(RawClient(server.port()).exchange("POST /renewal HTTP/1.1\r\nContent-Length: 9\r\n\r\n").status,
              400)
        << "that it is malformed has nothing to do with load";
}

TEST_F(HttpLanesTest, RequestWhoseClientHasGoneIsNotBegun)
{
    TestServer server(handler(), options(), TestServer::byPath());
    for (const std::string lane : {"/renewal", "/password", "/"}) {
        const auto occupant = occupy(server, lane + "slow");
        auto closed = queue(server, lane, "closed");
        auto reset = queue(server, lane, "reset");
        const auto stays = queue(server, lane, "stays");
        const auto halfClosed = queue(server, lane, "half-closed");
        closed.reset();
        reset->reset();
        halfClosed->endOutput();
        gate.open();
        EXPECT_EQ(occupant->receive().status, 200);
        EXPECT_EQ(stays->receive().status, 200);
        EXPECT_EQ(halfClosed->receiveAll(), "") << "for the system both are one";
        EXPECT_EQ(RawClient(server.port()).exchange(post(lane, "next")).status, 200);
        gate = Gate();
    }
    std::vector<std::string> expected;
    for (int i = 0; i < 3; ++i)
        expected.insert(expected.end(), {"occupant", "stays", "next"});
    EXPECT_EQ(begun(), expected);
    const std::string log = server.log();
    EXPECT_NE(log.find(" status=0 "), std::string::npos) << log;
}

TEST_F(HttpLanesTest, RequestWhoseClientHasGoneIsNotBegunWithTlsEither)
{
    const TestCertificate certificate;
    HttpOptions encrypted = options();
    encrypted.certificateFile = certificate.certificateFile();
    encrypted.privateKeyFile = certificate.keyFile();
    TestServer server(handler(), encrypted, TestServer::byPath());
    TlsClient occupant(server.port(), certificate.certificateFile(), {});
    occupant.send(post("/slow", "occupant", "Connection: close\r\n"));
    ASSERT_TRUE(eventually([this] { return begun().size() == 1; }));
    {
        TlsClient gone(server.port(), certificate.certificateFile(), {});
        // The server reads the first one; the other stays in the socket, in front of the end of the stream.
        gone.send(post("/", "gone") + post("/", std::string(10'000, 'g')));
    }
    TlsClient stays(server.port(), certificate.certificateFile(), {});
    stays.send(post("/", "stays", "Connection: close\r\n"));
    std::this_thread::sleep_for(milliseconds(100));
    gate.open();
    bool clean = false;
    EXPECT_TRUE(stays.receiveAll(clean).starts_with("HTTP/1.1 200 "));
    EXPECT_EQ(begun(), (std::vector<std::string>{"occupant", "stays"}));
}

} // namespace clockwell::server
