#include "net/ClientFixture.h"
#include "net/FakeNetwork.h"
#include "net/Liveness.h"

#include <QThread>
#include <QTimer>

#include <atomic>

namespace clockwell::test {

namespace {

using Kind = TransportError::Kind;
using namespace std::chrono_literals;

class Lifetime : public ClientTest
{
protected:
    Kind kindOf(const std::shared_ptr<Outcome<MessageResponse>> &outcome)
    {
        EXPECT_TRUE(outcome->done);
        try {
            if (outcome->error)
                std::rethrow_exception(outcome->error);
        } catch (const TransportError &error) {
            return error.kind;
        }
        throw std::runtime_error("no transport error");
    }
};

QCoro::Task<MessageResponse> getThing(APIClient &client)
{
    return client.request<MessageResponse>(QStringLiteral("thing"), QStringLiteral("GET"), {}, std::nullopt,
                                           true);
}

} // namespace

TEST_F(Lifetime, UnusedClientCanBeDestroyed)
{
    client();
    destroyClient();
}

TEST_F(Lifetime, DestructionEndsAllRequestsInFlightWithAnError)
{
    server.expect("GET", "/api/thing").times(3).never();
    server.expect("POST", "/api/thing").never();
    const QList calls{observe(get()), observe(get()), observe(get()), observe(post())};
    EXPECT_TRUE(server.waitForRequests(4));
    QElapsedTimer clock;
    clock.start();
    destroyClient();
    EXPECT_LT(clock.elapsed(), 15'000) << "a request may take 25 seconds";
    for (const auto &call : calls)
        EXPECT_EQ(kindOf(call), Kind::Cancelled);
}

TEST_F(Lifetime, DestructionRightAfterACallEndsItWithAnError)
{
    const auto call = observe(get());
    destroyClient();
    EXPECT_EQ(kindOf(call), Kind::Cancelled);
    // The request may or may not have reached the server.
    server.expect("GET", "/api/thing").anyNumber();
}

TEST_F(Lifetime, DestructionDuringARenewalEndsAllRequestsAndKeepsTheTokens)
{
    server.expect("GET", "/api/thing").times(3).reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").never();
    const QList calls{observe(get()), observe(get()), observe(get())};
    EXPECT_TRUE(server.waitForRequests(4));
    destroyClient();
    for (const auto &call : calls)
        EXPECT_EQ(kindOf(call), Kind::Cancelled);
    EXPECT_EQ(tokens.access(), QStringLiteral("a1"));
    EXPECT_EQ(tokens.refresh(), QStringLiteral("r1"));
    EXPECT_FALSE(events.expiredAt());
}

TEST_F(Lifetime, DestructionEndsWorkThatHasNotBegun)
{
    const auto busy = observe(client().perform<void>([] { std::this_thread::sleep_for(100ms); }));
    const auto queued = observe(get());
    destroyClient();
    EXPECT_TRUE(busy->done);
    EXPECT_EQ(kindOf(queued), Kind::Cancelled);
    server.expect("GET", "/api/thing").anyNumber();
}

TEST_F(Lifetime, ThreadIsGoneAfterDestruction)
{
    struct SlowEnd
    {
        const std::shared_ptr<std::atomic<bool>> gone;
        ~SlowEnd()
        {
            std::this_thread::sleep_for(100ms);
            *gone = true;
        }
    };
    const auto gone = std::make_shared<std::atomic<bool>>(false);
    await(client().perform<void>([gone] { thread_local const SlowEnd atThreadEnd{gone}; }));
    destroyClient();
    EXPECT_TRUE(*gone);
}

TEST_F(Lifetime, CallDuringDestructionIsRefused)
{
    server.expect("GET", "/api/thing").never();
    const auto again = [](APIClient &client, bool *refused) -> QCoro::Task<> {
        try {
            co_await getThing(client);
        } catch (const TransportError &) {
        }
        try {
            co_await getThing(client);
        } catch (const TransportError &error) {
            *refused = error.kind == Kind::Cancelled;
        }
    };
    bool refused = false;
    const auto call = observe(again(client(), &refused));
    EXPECT_TRUE(server.waitForRequests(1));
    destroyClient();
    EXPECT_TRUE(call->done);
    EXPECT_TRUE(refused);
}

TEST_F(Lifetime, CallersResumeOnTheirOwnThreads)
{
    server.expect("GET", "/api/thing").reply(200, R"({"message":"m"})");
    client();
    QThread *resumed = nullptr;
    QString message;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        const auto call = observe(get());
        ASSERT_TRUE(spinUntil([&] { return call->done; }));
        ASSERT_TRUE(call->value);
        message = call->value->message.value_or(QString());
        resumed = QThread::currentThread();
    }));
    thread->start();
    ASSERT_TRUE(thread->wait(patience));
    EXPECT_EQ(message, QStringLiteral("m"));
    EXPECT_EQ(resumed, thread.get());
}

TEST_F(Lifetime, ThreadThatEndsDuringARequestUnwindsItsCoroutines)
{
    server.expect("GET", "/api/thing").after(1s).reply(200, "{}");
    client();
    std::shared_ptr<Outcome<MessageResponse>> call;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        call = observe(get());
        spinUntil([] { return false; }, 50ms);
    }));
    thread->start();
    ASSERT_TRUE(thread->wait(patience));
    EXPECT_EQ(kindOf(call), Kind::Cancelled);
    spinUntil([] { return false; }, 1500ms); // the reply arrives after its thread has ended
    expectUsable();
}

TEST_F(Lifetime, TaskMayBeDiscarded)
{
    server.expect("GET", "/api/thing").reply(200, "{}");
    {
        get();
    }
    EXPECT_TRUE(server.waitForRequests(1));
    spinUntil([] { return false; }, 50ms);
}

TEST_F(Lifetime, OfflineDeviceWaitsForTheNetwork)
{
    FakeNetwork network;
    APIClient::Options waiting = options();
    waiting.reachability = network.factory();
    waiting.idleLimit = 1s; // does not apply while the device is offline
    APIClient other(waiting, tokens, events);
    const auto call = observe(getThing(other));
    spinUntil([] { return false; }, 1500ms);
    EXPECT_FALSE(call->done);
    EXPECT_EQ(server.connections(), 0);
    server.expect("GET", "/api/thing").reply(200, "{}");
    network.change(true); // a change, but still offline
    spinUntil([] { return false; }, 50ms);
    EXPECT_FALSE(call->done);
    network.change(false);
    EXPECT_TRUE(spinUntil([&] { return call->done; }));
    EXPECT_TRUE(call->value);
}

TEST_F(Lifetime, OfflineDeviceFailsAfterTheTotalLimit)
{
    FakeNetwork network;
    APIClient::Options waiting = options();
    waiting.reachability = network.factory();
    waiting.totalLimit = 200ms;
    APIClient other(waiting, tokens, events);
    const auto error = awaitError<TransportError>(getThing(other));
    EXPECT_EQ(error.kind, Kind::Offline);
    EXPECT_EQ(error.text(), QStringLiteral("The device is offline."));
    EXPECT_EQ(server.connections(), 0);
}

TEST_F(Lifetime, KeptConnectionsAreNotReusedAfterAChangeOfTheNetwork)
{
    FakeNetwork network;
    network.offline = false;
    changeOptions([&](APIClient::Options &options) { options.reachability = network.factory(); });
    server.expect("GET", "/api/thing").times(4).after(50ms).reply(200, "{}");
    await(get());
    await(get());
    EXPECT_EQ(server.connections(), 1);
    const auto inFlight = observe(get());
    EXPECT_TRUE(server.waitForRequests(3));
    network.change(false);
    await(get());
    EXPECT_EQ(server.connections(), 2);
    EXPECT_TRUE(spinUntil([&] { return inFlight->done; }));
    EXPECT_TRUE(inFlight->value);
}

TEST_F(Lifetime, KeptConnectionsAreNotReusedAfterAFailure)
{
    limit(1500ms, 40s);
    server.expect("GET", "/api/thing").times(4).reply(200, "{}");
    await(get());
    server.expect("POST", "/api/silent").never();
    EXPECT_EQ(transportError(post("silent")), Kind::TimedOut);
    await(get());
    EXPECT_NE(server.requests().at(0).connection, server.requests().at(2).connection);
    await(get());
    EXPECT_EQ(server.requests().at(2).connection, server.requests().at(3).connection);
    server.expect("GET", "/api/silent").never();
    EXPECT_EQ(transportError(get("silent")), Kind::TimedOut);
    await(get());
    EXPECT_NE(server.requests().at(3).connection, server.requests().at(5).connection);
}

TEST_F(Lifetime, DestructionWhileOfflineEndsTheWait)
{
    FakeNetwork network;
    APIClient::Options waiting = options();
    waiting.reachability = network.factory();
    auto other = std::make_unique<APIClient>(waiting, tokens, events);
    const auto call = observe(getThing(*other));
    spinUntil([] { return false; }, 50ms);
    other.reset();
    EXPECT_EQ(kindOf(call), Kind::Cancelled);
}

namespace {

class Screen final : public QObject
{
public:
    void setBusy(bool busy) { log += busy ? u'+' : u'-'; }
    QString log;
};

QCoro::Task<> visit(Screen *screen, QCoro::Task<MessageResponse> request, QString *trace)
{
    const BusyFlag busy(screen, &Screen::setBusy);
    struct Unwound
    {
        QString *trace;
        ~Unwound() { *trace += u'u'; }
    } const unwound{trace};
    try {
        co_await whileAlive(screen, std::move(request));
        *trace += u'v';
    } catch (const std::exception &) {
        *trace += u'e';
    }
}

} // namespace

TEST_F(Lifetime, ExistingScreenGetsItsResult)
{
    server.expect("GET", "/api/thing").reply(200, "{}");
    Screen screen;
    QString trace;
    await(visit(&screen, get(), &trace));
    EXPECT_EQ(trace, QStringLiteral("vu"));
    EXPECT_EQ(screen.log, QStringLiteral("+-"));
}

TEST_F(Lifetime, ExistingScreenGetsItsError)
{
    server.expect("GET", "/api/thing").reply(500);
    Screen screen;
    QString trace;
    await(visit(&screen, get(), &trace));
    EXPECT_EQ(trace, QStringLiteral("eu"));
    EXPECT_EQ(screen.log, QStringLiteral("+-"));
}

TEST_F(Lifetime, DestroyedScreenGetsNeitherAResultNorAnError)
{
    for (const int status : {200, 500}) {
        server.expect("GET", "/api/thing").after(100ms).reply(status, "{}");
        auto screen = std::make_unique<Screen>();
        QString trace;
        const auto call = observe(visit(screen.get(), get(), &trace));
        screen.reset();
        EXPECT_TRUE(spinUntil([&] { return call->done; }));
        EXPECT_EQ(trace, QStringLiteral("u")) << status;
        ASSERT_TRUE(call->error);
        EXPECT_THROW(std::rethrow_exception(call->error), Abandoned);
    }
}

TEST(ErrorText, IsTheTextOfUserFacingErrorsAndAGeneralOneForOthers)
{
    EXPECT_EQ(errorText(APIError(QStringLiteral("m"))), QStringLiteral("m"));
    EXPECT_EQ(errorText(DecodingError(QStringLiteral("Bad date: x"))), QStringLiteral("Bad date: x"));
    EXPECT_EQ(errorText(EncodingError(QStringLiteral("e"))), QStringLiteral("e"));
    EXPECT_EQ(errorText(TransportError(Kind::TimedOut)), QStringLiteral("The request timed out."));
    EXPECT_EQ(errorText(std::runtime_error("internal detail")), QStringLiteral("Something went wrong."));
}

} // namespace clockwell::test
