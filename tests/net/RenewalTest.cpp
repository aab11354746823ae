#include "net/ClientFixture.h"

#include <QList>
#include <QThread>

namespace clockwell::test {

namespace {

using Kind = TransportError::Kind;
using namespace std::chrono_literals;

const QString refused = QStringLiteral("Session expired. Please sign in again.");

class Renewal : public ClientTest
{
protected:
    Renewal()
    {
        QObject::connect(
            &events, &SessionEvents::expiredAtChanged, &events,
            [this] {
                ++expiries;
                onMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
            });
    }

    /// The server replies 401 to the old token and a message to the new one.
    void expectStaleToken(const char *path, int times = 1)
    {
        const QString full = QStringLiteral("/api/") + QString::fromUtf8(path);
        server.expect("GET", full).withHeader("Authorization", "Bearer a1").times(times).reply(401, "{}");
        server.expect("GET", full)
            .withHeader("Authorization", "Bearer a2")
            .times(times)
            .reply(200, R"({"message":"new"})");
    }
    int refreshes() const { return server.count(QStringLiteral("/api/auth/refresh")); }
    void expectTokensKept()
    {
        EXPECT_EQ(tokens.access(), QStringLiteral("a1"));
        EXPECT_EQ(tokens.refresh(), QStringLiteral("r1"));
        EXPECT_EQ(expiries, 0);
        EXPECT_EQ(tokens.writes().size(), 0);
    }
    void expectNoRefreshError(const APIError &error)
    {
        EXPECT_EQ(error.message, QStringLiteral("Session expired."));
        EXPECT_EQ(error.code, QStringLiteral("NO_REFRESH"));
        EXPECT_EQ(error.httpStatus, 401);
    }
    /// Signs out as the account does.
    void signOut()
    {
        client().sessionChanged();
        clearTokens(tokens);
    }
    void signIn()
    {
        client().sessionChanged();
        saveTokens(tokens, QStringLiteral("b1"), QStringLiteral("s1"));
    }
    /// Starts a request and waits until its renewal has reached the server, which replies later.
    std::shared_ptr<Outcome<MessageResponse>> renewalInFlight(int status, const QByteArray &body)
    {
        server.expect("GET", "/api/thing").withHeader("Authorization", "Bearer a1").reply(401, "{}");
        server.expect("POST", "/api/auth/refresh").after(1s).reply(status, body);
        const auto outcome = observe(get());
        EXPECT_TRUE(server.waitForRequests(2));
        return outcome;
    }
    APIError errorOf(const std::shared_ptr<Outcome<MessageResponse>> &outcome)
    {
        EXPECT_TRUE(spinUntil([&] { return outcome->done; }));
        try {
            if (outcome->error)
                std::rethrow_exception(outcome->error);
        } catch (const APIError &error) {
            return error;
        }
        throw std::runtime_error("no error");
    }

    int expiries = 0;
    bool onMainThread = false;
};

} // namespace

TEST_F(Renewal, OneRenewalAndOneRetryWithTheNewToken)
{
    expectStaleToken("thing");
    server.expect("POST", "/api/auth/refresh").reply(200, newTokens);
    EXPECT_EQ(await(get()).message, QStringLiteral("new"));
    const QList<FakeServer::Request> sent = server.requests();
    ASSERT_EQ(sent.size(), 3);
    EXPECT_EQ(sent[0].header("Authorization"), "Bearer a1");
    EXPECT_EQ(sent[1].path, QStringLiteral("/api/auth/refresh"));
    EXPECT_EQ(sent[2].header("Authorization"), "Bearer a2");
}

TEST_F(Renewal, RenewalRequestHasItsBodyAndNeitherAcceptNorBearer)
{
    expectStaleToken("thing");
    server.expect("POST", "/api/auth/refresh").reply(200, newTokens);
    await(get());
    const FakeServer::Request sent = server.requests().at(1);
    EXPECT_EQ(sent.method, "POST");
    EXPECT_EQ(sent.body, R"({"refreshToken":"r1"})");
    EXPECT_EQ(sent.header("Content-Type"), "application/json");
    EXPECT_FALSE(sent.has("Authorization"));
    EXPECT_FALSE(sent.has("Accept"));
}

TEST_F(Renewal, BigNumberUnderAnUnknownKeyDoesNotFailIt)
{
    for (const char *number : {"123456789012345678901234567890", "1e400", "-1e400"}) {
        SCOPED_TRACE(number);
        expectStaleToken("thing");
        server.expect("POST", "/api/auth/refresh")
            .reply(200, R"({"issued":)" + QByteArray(number) + R"(,"accessToken":"a2","refreshToken":"r2"})");
        EXPECT_EQ(await(get()).message, QStringLiteral("new"));
        EXPECT_EQ(tokens.refresh(), QStringLiteral("r2"));
        EXPECT_EQ(expiries, 0);
        saveTokens(tokens, QStringLiteral("a1"), QStringLiteral("r1"));
    }
}

TEST_F(Renewal, StoresTheAccessTokenFirst)
{
    expectStaleToken("thing");
    server.expect("POST", "/api/auth/refresh").reply(200, newTokens);
    await(get());
    EXPECT_EQ(tokens.writes(),
              (QList<MemoryTokenStore::Write>{{TokenKey::accessToken, QStringLiteral("a2")},
                                              {TokenKey::refreshToken, QStringLiteral("r2")}}));
    EXPECT_EQ(expiries, 0);
}

TEST_F(Renewal, RetryHasTheSamePathQueryAndBody)
{
    server.expect("POST", "/api/attendance/punch").withHeader("Authorization", "Bearer a1").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(201, newTokens);
    server.expect("POST", "/api/attendance/punch").withHeader("Authorization", "Bearer a2").reply(200, "{}");
    await(client().request<MessageResponse>(QStringLiteral("attendance/punch"), QStringLiteral("POST"),
                                            {{QStringLiteral("q"), QStringLiteral("1")}},
                                            std::optional(Greeting{QStringLiteral("hi")}), true));
    EXPECT_EQ(server.requests().at(2).target, "/api/attendance/punch?q=1");
    EXPECT_EQ(server.requests().at(2).body, R"({"text":"hi"})");
}

TEST_F(Renewal, SecondRefusalIsReportedWithoutAnotherRenewal)
{
    server.expect("GET", "/api/thing").withHeader("Authorization", "Bearer a1").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(200, newTokens);
    server.expect("GET", "/api/thing")
        .withHeader("Authorization", "Bearer a2")
        .reply(401, R"({"message":"Still no.","error":"X"})");
    const auto error = awaitError<APIError>(get());
    EXPECT_EQ(error.message, QStringLiteral("Still no."));
    EXPECT_EQ(error.code, QStringLiteral("X"));
    EXPECT_EQ(error.httpStatus, 401);
    EXPECT_EQ(refreshes(), 1);
    EXPECT_EQ(tokens.access(), QStringLiteral("a2"));
}

TEST_F(Renewal, RetryIsNotRenewed)
{
    server.expect("GET", "/api/thing").reply(401, "{}");
    EXPECT_EQ(awaitError<APIError>(get("thing", true, true)).httpStatus, 401);
    EXPECT_EQ(refreshes(), 0);
}

TEST_F(Renewal, WithoutRefreshTokenTheServersMessageIsReported)
{
    tokens.save(TokenKey::refreshToken, std::nullopt);
    server.expect("GET", "/api/thing").reply(401, R"({"message":"Who are you?"})");
    EXPECT_EQ(awaitError<APIError>(get()).message, QStringLiteral("Who are you?"));
    server.expect("GET", "/api/thing").reply(401, "<html>");
    EXPECT_EQ(awaitError<APIError>(get()).message, QStringLiteral("Request failed (401)."));
    EXPECT_EQ(refreshes(), 0);
    EXPECT_EQ(tokens.access(), QStringLiteral("a1"));
    EXPECT_EQ(expiries, 0);
}

TEST_F(Renewal, WithOnlyARefreshTokenTheSessionIsRenewed)
{
    tokens.save(TokenKey::accessToken, std::nullopt);
    server.expect("GET", "/api/thing").withHeader("Authorization", "").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(200, newTokens);
    server.expect("GET", "/api/thing").withHeader("Authorization", "Bearer a2").reply(200, "{}");
    await(get());
}

TEST_F(Renewal, RefusalEndsTheSessionWhateverItsStatus)
{
    for (const int status : {302, 400, 401, 403, 500, 503}) {
        saveTokens(tokens, QStringLiteral("a1"), QStringLiteral("r1"));
        expiries = 0;
        server.expect("GET", "/api/thing").reply(401, "{}");
        server.expect("POST", "/api/auth/refresh").reply(status, R"({"message":"other"})");
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const auto error = awaitError<APIError>(get());
        EXPECT_EQ(error.message, refused) << status;
        EXPECT_EQ(error.code, QStringLiteral("REFRESH_FAILED"));
        EXPECT_EQ(error.httpStatus, 401);
        EXPECT_EQ(tokens.access(), std::nullopt);
        EXPECT_EQ(tokens.refresh(), std::nullopt);
        EXPECT_EQ(expiries, 1);
        EXPECT_TRUE(onMainThread);
        ASSERT_TRUE(events.expiredAt());
        EXPECT_GE(*events.expiredAt(), before);
        EXPECT_LE(*events.expiredAt(), QDateTime::currentDateTimeUtc());
    }
}

TEST_F(Renewal, RefusalDeletesTheAccessTokenFirst)
{
    server.expect("GET", "/api/thing").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(401, "{}");
    awaitError<APIError>(get());
    EXPECT_EQ(tokens.writes(), (QList<MemoryTokenStore::Write>{{TokenKey::accessToken, std::nullopt},
                                                               {TokenKey::refreshToken, std::nullopt}}));
}

TEST_F(Renewal, ExpiryIsAnnouncedBeforeTheCallerGetsTheError)
{
    server.expect("GET", "/api/thing").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(401, "{}");
    const auto outcome = observe(get());
    int expiriesAtTheEnd = -1;
    spinUntil([&] {
        if (outcome->done)
            expiriesAtTheEnd = expiries;
        return outcome->done;
    });
    EXPECT_EQ(expiriesAtTheEnd, 1);
}

TEST_F(Renewal, EachExpiryIsAnnounced)
{
    for (int i = 0; i < 2; ++i) {
        saveTokens(tokens, QStringLiteral("a1"), QStringLiteral("r1"));
        server.expect("GET", "/api/thing").reply(401, "{}");
        server.expect("POST", "/api/auth/refresh").reply(401, "{}");
        awaitError<APIError>(get());
    }
    EXPECT_EQ(expiries, 2);
}

TEST_F(Renewal, LostConnectionKeepsTheTokens)
{
    server.expect("GET", "/api/thing").times(2).reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").close();
    EXPECT_EQ(transportError(get()), Kind::ConnectionLost);
    server.expect("POST", "/api/auth/refresh").raw("SSH-2.0-x\r\n\r\n").thenClose();
    EXPECT_THROW(await(get()), TransportError);
    EXPECT_EQ(refreshes(), 2);
    expectTokensKept();
}

TEST_F(Renewal, SilentServerKeepsTheTokens)
{
    limit(1s, 40s);
    server.expect("GET", "/api/thing").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").never();
    EXPECT_EQ(transportError(get()), Kind::TimedOut);
    expectTokensKept();
}

TEST_F(Renewal, ReplyThatDoesNotDecodeKeepsTheTokensAndIsADecodingError)
{
    for (const char *body :
         {"{}", "", "<html>", R"({"accessToken":"a2"})", R"({"accessToken":"a2","refreshToken":5})"}) {
        server.expect("GET", "/api/thing").reply(401, "{}");
        server.expect("POST", "/api/auth/refresh").reply(200, body);
        EXPECT_THROW(await(get()), DecodingError) << body;
    }
    expectTokensKept();
}

TEST_F(Renewal, Later401StartsANewRenewal)
{
    for (int i = 0; i < 2; ++i) {
        server.expect("GET", "/api/thing").reply(401, "{}");
        server.expect("POST", "/api/auth/refresh").close();
        EXPECT_THROW(await(get()), TransportError);
    }
    expectStaleToken("thing");
    server.expect("POST", "/api/auth/refresh").reply(200, newTokens);
    EXPECT_EQ(await(get()).message, QStringLiteral("new"));
    EXPECT_EQ(refreshes(), 3);
}

TEST_F(Renewal, ThreeCallsShareOneRenewal)
{
    for (const char *path : {"one", "two", "three"})
        expectStaleToken(path);
    server.expect("POST", "/api/auth/refresh").after(1s).reply(200, newTokens);
    const QList calls{observe(get("one")), observe(get("two")), observe(get("three"))};
    for (const auto &call : calls) {
        EXPECT_TRUE(spinUntil([&] { return call->done; }));
        ASSERT_TRUE(call->value);
        EXPECT_EQ(call->value->message, QStringLiteral("new"));
    }
    EXPECT_EQ(refreshes(), 1);
    EXPECT_EQ(server.requests().size(), 7);
}

TEST_F(Renewal, FiftyCallsShareOneRenewal)
{
    expectStaleToken("thing", 50);
    server.expect("POST", "/api/auth/refresh").after(3s).reply(200, newTokens);
    QList<std::shared_ptr<Outcome<MessageResponse>>> calls;
    for (int i = 0; i < 50; ++i)
        calls += observe(get());
    for (const auto &call : calls) {
        EXPECT_TRUE(spinUntil([&] { return call->done; }));
        ASSERT_TRUE(call->value);
        EXPECT_EQ(call->value->message, QStringLiteral("new"));
    }
    EXPECT_EQ(refreshes(), 1);
    EXPECT_EQ(server.requests().size(), 101);
}

TEST_F(Renewal, ThreeCallsShareOneRefusal)
{
    for (const char *path : {"one", "two", "three"})
        server.expect("GET", QStringLiteral("/api/") + QString::fromUtf8(path)).reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").after(1s).reply(401, "{}");
    const QList calls{observe(get("one")), observe(get("two")), observe(get("three"))};
    for (const auto &call : calls)
        EXPECT_EQ(errorOf(call).message, refused);
    EXPECT_EQ(refreshes(), 1);
    EXPECT_EQ(expiries, 1);
}

TEST_F(Renewal, SignOutDuringARenewalLeavesNoTokens)
{
    const auto call = renewalInFlight(200, newTokens);
    signOut();
    expectNoRefreshError(errorOf(call));
    EXPECT_EQ(tokens.access(), std::nullopt);
    EXPECT_EQ(tokens.refresh(), std::nullopt);
    EXPECT_EQ(expiries, 0);
    EXPECT_EQ(server.requests().size(), 2);
}

TEST_F(Renewal, SignOutDuringARenewalIsNotAnExpiry)
{
    const auto call = renewalInFlight(401, "{}");
    signOut();
    expectNoRefreshError(errorOf(call));
    spinUntil([] { return false; }, 50ms);
    EXPECT_EQ(expiries, 0);
}

TEST_F(Renewal, RefusalOfTheOldSessionDoesNotAffectTheNewOne)
{
    const auto call = renewalInFlight(401, "{}");
    signOut();
    signIn();
    expectNoRefreshError(errorOf(call));
    EXPECT_EQ(tokens.access(), QStringLiteral("b1"));
    EXPECT_EQ(tokens.refresh(), QStringLiteral("s1"));
    EXPECT_EQ(expiries, 0);
}

TEST_F(Renewal, RenewalOfTheOldSessionDoesNotReplaceTheNewOne)
{
    const auto call = renewalInFlight(200, newTokens);
    signOut();
    signIn();
    expectNoRefreshError(errorOf(call));
    EXPECT_EQ(tokens.access(), QStringLiteral("b1"));
    EXPECT_EQ(tokens.refresh(), QStringLiteral("s1"));
}

TEST_F(Renewal, NewSessionDoesNotWaitForTheRenewalOfTheOldOne)
{
    const auto old = renewalInFlight(200, newTokens);
    signOut();
    signIn();
    server.expect("GET", "/api/other").withHeader("Authorization", "Bearer b1").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(200, R"({"accessToken":"b2","refreshToken":"s2"})");
    server.expect("GET", "/api/other").withHeader("Authorization", "Bearer b2").reply(200, "{}");
    await(get("other"));
    EXPECT_FALSE(old->done);
    expectNoRefreshError(errorOf(old));
    EXPECT_EQ(tokens.access(), QStringLiteral("b2"));
    EXPECT_EQ(tokens.refresh(), QStringLiteral("s2"));
}

TEST_F(Renewal, RequestOfTheOldSessionIsNotRetriedInTheNewOne)
{
    server.expect("GET", "/api/thing").after(1s).reply(401, R"({"message":"Old."})");
    const auto call = observe(get());
    EXPECT_TRUE(server.waitForRequests(1));
    signOut();
    signIn();
    EXPECT_EQ(errorOf(call).message, QStringLiteral("Old."));
    EXPECT_EQ(server.requests().size(), 1);
    EXPECT_EQ(tokens.access(), QStringLiteral("b1"));
}

namespace {

/// Changes the session during a write, as another thread might.
class RacingStore final : public TokenStore
{
public:
    std::optional<QString> load(const QString &key) const override { return m_inner.load(key); }
    void save(const QString &key, const std::optional<QString> &value) override
    {
        m_inner.save(key, value);
        if (const auto meddle = std::exchange(onSave, {}))
            meddle();
    }
    std::function<void()> onSave;

private:
    MemoryTokenStore m_inner{QStringLiteral("a1"), QStringLiteral("r1")};
};

} // namespace

TEST_F(Renewal, SignOutDuringTheWriteLeavesNoTokens)
{
    RacingStore racing;
    APIClient other(options(), racing, events);
    racing.onSave = [&] { other.sessionChanged(); };
    server.expect("GET", "/api/thing").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(200, newTokens);
    expectNoRefreshError(awaitError<APIError>(other.request<MessageResponse>(
        QStringLiteral("thing"), QStringLiteral("GET"), {}, std::nullopt, true)));
    EXPECT_EQ(racing.load(TokenKey::accessToken), std::nullopt);
    EXPECT_EQ(racing.load(TokenKey::refreshToken), std::nullopt);
}

TEST_F(Renewal, SignInWaitsForAWriteThatHasBegun)
{
    RacingStore racing;
    APIClient other(options(), racing, events);
    std::atomic<bool> writing = false;
    std::atomic<bool> written = false;
    racing.onSave = [&] {
        writing = true;
        std::this_thread::sleep_for(200ms);
        written = true;
    };
    server.expect("GET", "/api/thing").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(200, newTokens);
    const auto call = observe(other.request<MessageResponse>(QStringLiteral("thing"), QStringLiteral("GET"),
                                                             {}, std::nullopt, true));
    ASSERT_TRUE(spinUntil([&] { return writing.load(); }));
    other.sessionChanged();
    EXPECT_TRUE(written);
    saveTokens(racing, QStringLiteral("b1"), QStringLiteral("s1"));
    expectNoRefreshError(errorOf(call));
    EXPECT_EQ(racing.load(TokenKey::accessToken), QStringLiteral("b1"));
    EXPECT_EQ(racing.load(TokenKey::refreshToken), QStringLiteral("s1"));
}

TEST(SessionEventsTest, AnnouncesEveryAssignment)
{
    SessionEvents events;
    int count = 0;
    QObject::connect(&events, &SessionEvents::expiredAtChanged, &events, [&] { ++count; });
    EXPECT_FALSE(events.expiredAt());
    const QDateTime moment = QDateTime::currentDateTimeUtc();
    events.setExpiredAt(moment);
    events.setExpiredAt(moment);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(events.expiredAt(), moment);
}

} // namespace clockwell::test
