#include "account/AuthStore.h"

#include "net/APIClient.h"
#include "net/DeviceFacts.h"
#include "net/SessionEvents.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::await;
using test::awaitError;
using test::FakeServer;
using test::MemoryTokenStore;

const QByteArray ada = R"({"id":"u1","fullName":"Ada Byron","email":"ada@example.org","role":"EMPLOYEE",)"
                       R"("status":"APPROVED"})";

QByteArray loginReply()
{
    return R"({"accessToken":"a1","refreshToken":"r1","user":)" + ada + "}";
}

class AuthStoreTest : public ::testing::Test
{
protected:
    APIClient::Options options() const
    {
        APIClient::Options result;
        result.baseURL = server.url(u"/api"_s);
        return result;
    }

    void storeTokens(const std::optional<QString> &access, const std::optional<QString> &refresh)
    {
        tokens.save(TokenKey::accessToken, access);
        tokens.save(TokenKey::refreshToken, refresh);
    }

    void signIn()
    {
        server.expect("POST", "/api/auth/login").reply(200, loginReply());
        await(store.login(u"ada@example.org"_s, u"secret"_s));
    }

    QByteArray lastBody() const { return server.requests().constLast().body; }

    FakeServer server;
    MemoryTokenStore tokens;
    SessionEvents events;
    APIClient api{options(), tokens, events};
    AuthStore store{api, tokens};
};

TEST_F(AuthStoreTest, StartsLoadingWithoutAUser)
{
    EXPECT_EQ(store.phase(), AuthStore::Phase::Loading);
    EXPECT_FALSE(store.user());
    EXPECT_EQ(store.fullName(), QString());
}

TEST_F(AuthStoreTest, BootstrapWithoutTokensSignsOutWithoutARequest)
{
    await(store.bootstrap());
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(AuthStoreTest, BootstrapWithOnlyARefreshTokenRequestsTheUser)
{
    storeTokens(std::nullopt, u"r0"_s);
    server.expect("GET", "/api/auth/me").withHeader("Authorization", "").reply(200, ada);
    await(store.bootstrap());
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedIn);
    EXPECT_EQ(store.user()->email, u"ada@example.org"_s);
}

TEST_F(AuthStoreTest, BootstrapWithAnAccessTokenRestoresTheSession)
{
    storeTokens(u"a0"_s, u"r0"_s);
    server.expect("GET", "/api/auth/me").withHeader("Authorization", "Bearer a0").reply(200, ada);
    QList<AuthStore::Phase> phases;
    bool userSetFirst = false;
    QObject::connect(&store, &AuthStore::phaseChanged, &store, [&] {
        phases.append(store.phase());
        userSetFirst = store.user().has_value();
    });
    await(store.bootstrap());
    EXPECT_EQ(phases, QList{AuthStore::Phase::SignedIn});
    EXPECT_TRUE(userSetFirst);
    EXPECT_EQ(tokens.access(), u"a0"_s);
    EXPECT_EQ(server.requests().at(0).target, "/api/auth/me");
}

TEST_F(AuthStoreTest, BootstrapRefusedByTheServerDeletesBothTokens)
{
    storeTokens(u"a0"_s, std::nullopt);
    server.expect("GET", "/api/auth/me").reply(401, R"({"message":"Who are you?"})");
    await(store.bootstrap());
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
    EXPECT_FALSE(tokens.access());
    EXPECT_FALSE(tokens.refresh());
}

TEST_F(AuthStoreTest, BootstrapWithAnExpiredSessionDeletesBothTokens)
{
    storeTokens(u"a0"_s, u"r0"_s);
    server.expect("GET", "/api/auth/me").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(401, "{}");
    await(store.bootstrap());
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
    EXPECT_FALSE(tokens.access());
    EXPECT_FALSE(tokens.refresh());
    EXPECT_TRUE(events.expiredAt());
}

TEST_F(AuthStoreTest, BootstrapWhileTheServerIsDownDeletesBothTokens)
{
    storeTokens(u"a0"_s, u"r0"_s);
    server.goDown();
    await(store.bootstrap());
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
    EXPECT_FALSE(tokens.access());
    EXPECT_FALSE(tokens.refresh());
    EXPECT_FALSE(events.expiredAt());
}

TEST_F(AuthStoreTest, BootstrapWithAnUnreadableUserSignsOut)
{
    storeTokens(u"a0"_s, u"r0"_s);
    server.expect("GET", "/api/auth/me").reply(200, R"({"id":"u1"})");
    await(store.bootstrap());
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
    EXPECT_FALSE(store.user());
    EXPECT_FALSE(tokens.access());
}

TEST_F(AuthStoreTest, LoginSendsItsBodyInOrderAndWithoutABearerToken)
{
    storeTokens(u"old"_s, u"older"_s);
    server.expect("POST", "/api/auth/login").withHeader("Authorization", "").reply(200, loginReply());
    await(store.login(u"ada@example.org"_s, u"  secret "_s));
    const QByteArray expected = R"({"email":"ada@example.org","password":"  secret ","deviceId":")" +
                                currentDeviceId().toUtf8() + R"("})";
    EXPECT_EQ(lastBody(), expected);
}

TEST_F(AuthStoreTest, LoginSavesTheTokensThenSetsTheUserThenThePhase)
{
    server.expect("POST", "/api/auth/login").reply(200, loginReply());
    QStringList order;
    QObject::connect(
        &store, &AuthStore::userChanged, &store,
        [&] { order.append(tokens.refresh() ? u"user after tokens"_s : u"user before tokens"_s); });
    QObject::connect(&store, &AuthStore::phaseChanged, &store, [&] { order.append(u"phase"_s); });
    await(store.login(u"ada@example.org"_s, u"secret"_s));
    EXPECT_EQ(order, (QStringList{u"user after tokens"_s, u"phase"_s}));
    const QList<MemoryTokenStore::Write> saved = tokens.writes();
    ASSERT_EQ(saved.size(), 2);
    EXPECT_EQ(saved[0], (MemoryTokenStore::Write{TokenKey::accessToken, u"a1"_s}));
    EXPECT_EQ(saved[1], (MemoryTokenStore::Write{TokenKey::refreshToken, u"r1"_s}));
    EXPECT_EQ(store.fullName(), u"Ada Byron"_s);
}

TEST_F(AuthStoreTest, LoginFailureChangesNothingAndCarriesTheCode)
{
    await(store.bootstrap());
    server.expect("POST", "/api/auth/login")
        .reply(403,
               R"({"statusCode":403,"error":"EMAIL_NOT_VERIFIED","message":"Verify your e-mail first."})");
    const auto error = awaitError<APIError>(store.login(u"ada@example.org"_s, u"secret"_s));
    EXPECT_EQ(error.message, u"Verify your e-mail first."_s);
    EXPECT_EQ(error.code, u"EMAIL_NOT_VERIFIED"_s);
    EXPECT_EQ(error.httpStatus, 403);
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
    EXPECT_FALSE(store.user());
    EXPECT_TRUE(tokens.writes().isEmpty());
}

TEST_F(AuthStoreTest, LoginWithoutAnyReplyRethrowsTheTransportError)
{
    server.goDown();
    EXPECT_EQ(awaitError<TransportError>(store.login(u"a"_s, u"b"_s)).text(),
              u"Could not connect to the server."_s);
    EXPECT_TRUE(tokens.writes().isEmpty());
}

TEST_F(AuthStoreTest, LogoutSendsNothingAndLeavesNoToken)
{
    signIn();
    bool tokensDeletedFirst = false;
    QObject::connect(&store, &AuthStore::phaseChanged, &store,
                     [&] { tokensDeletedFirst = !tokens.access() && !tokens.refresh(); });
    const auto before = server.requests().size();
    store.logout();
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
    EXPECT_FALSE(store.user());
    EXPECT_TRUE(tokensDeletedFirst);
    EXPECT_EQ(server.requests().size(), before);
}

TEST_F(AuthStoreTest, LogoutWhileSignedOutDeletesTheTokensAgain)
{
    await(store.bootstrap());
    storeTokens(u"stray"_s, std::nullopt);
    store.logout();
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
    EXPECT_FALSE(tokens.access());
}

TEST_F(AuthStoreTest, LogoutDuringARefreshLeavesNoTokenBehind)
{
    signIn();
    server.expect("GET", "/api/auth/me").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh")
        .after(1s)
        .reply(200, R"({"accessToken":"a2","refreshToken":"r2"})");
    const auto outcome = test::observe(store.refreshMe());
    ASSERT_TRUE(server.waitForRequests(3));
    store.logout();
    ASSERT_TRUE(test::spinUntil([&] { return outcome->done; }));
    EXPECT_FALSE(tokens.access());
    EXPECT_FALSE(tokens.refresh());
    EXPECT_FALSE(events.expiredAt());
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedOut);
}

TEST_F(AuthStoreTest, RefreshMeReplacesTheUser)
{
    signIn();
    server.expect("GET", "/api/auth/me").reply(200, QByteArray(ada).replace("Ada Byron", "Ada Lovelace"));
    await(store.refreshMe());
    EXPECT_EQ(store.fullName(), u"Ada Lovelace"_s);
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedIn);
}

TEST_F(AuthStoreTest, RefreshMeAnsweredWithNullKeepsTheUser)
{
    signIn();
    server.expect("GET", "/api/auth/me").reply(200, "null");
    await(store.refreshMe());
    EXPECT_EQ(store.fullName(), u"Ada Byron"_s);
}

TEST_F(AuthStoreTest, RefreshMeFailingChangesNothing)
{
    signIn();
    server.expect("GET", "/api/auth/me").reply(500, R"({"message":"No."})");
    await(store.refreshMe());
    EXPECT_EQ(store.fullName(), u"Ada Byron"_s);
    EXPECT_EQ(store.phase(), AuthStore::Phase::SignedIn);
    EXPECT_EQ(tokens.access(), u"a1"_s);
}

TEST_F(AuthStoreTest, RefreshMeAnsweredAfterLogoutSetsNoUser)
{
    signIn();
    server.expect("GET", "/api/auth/me").after(1s).reply(200, ada);
    const auto outcome = test::observe(store.refreshMe());
    ASSERT_TRUE(server.waitForRequests(2));
    store.logout();
    ASSERT_TRUE(test::spinUntil([&] { return outcome->done; }));
    EXPECT_FALSE(store.user());
}

TEST_F(AuthStoreTest, SignupTrimsTheEmailAndOmitsEmptyOptionals)
{
    server.expect("POST", "/api/auth/signup").reply(201, R"({"message":"ok"})");
    const auto reply =
        await(store.signup(u" Ada "_s, u" \tada@example.org\t "_s, QString(), QString(), u" pass "_s));
    EXPECT_EQ(reply.message, u"ok"_s);
    const auto body = QJsonDocument::fromJson(lastBody()).object();
    EXPECT_EQ(body["fullName"_L1].toString(), u" Ada "_s);
    EXPECT_EQ(body["email"_L1].toString(), u"ada@example.org"_s);
    EXPECT_EQ(body["password"_L1].toString(), u" pass "_s);
    EXPECT_EQ(body["deviceModel"_L1].toString(), deviceModel());
    EXPECT_EQ(body["osVersion"_L1].toString(), u"iOS "_s + systemVersion());
    EXPECT_FALSE(body.contains("phone"_L1));
    EXPECT_FALSE(body.contains("instituteCode"_L1));
    EXPECT_TRUE(tokens.writes().isEmpty());
    EXPECT_EQ(store.phase(), AuthStore::Phase::Loading);
}

TEST_F(AuthStoreTest, SignupWritesItsKeysInOrder)
{
    server.expect("POST", "/api/auth/signup").reply(201, R"({"message":"ok"})");
    await(store.signup(u"Ada"_s, u"a@b"_s, u" "_s, u"dEmo "_s, u"pw"_s));
    const auto body = lastBody();
    qsizetype last = -1;
    for (const auto *key : {"fullName", "email", "phone", "password", "deviceId", "deviceModel", "osVersion",
                            "instituteCode"}) {
        const auto at = body.indexOf('"' + QByteArray(key) + "\":");
        EXPECT_GT(at, last) << key;
        last = at;
    }
    EXPECT_TRUE(body.contains(R"("phone":" ")"));
    EXPECT_TRUE(body.contains(R"("instituteCode":"dEmo ")"));
}

TEST_F(AuthStoreTest, AnEmailKeepsItsLineBreaks)
{
    server.expect("POST", "/api/auth/signup").reply(201, R"({"message":"ok"})");
    await(store.signup(u"A"_s, u" a@b\n "_s, QString(), QString(), u"p"_s));
    EXPECT_EQ(QJsonDocument::fromJson(lastBody()).object()["email"_L1].toString(), u"a@b\n"_s);
}

TEST_F(AuthStoreTest, TheFourCodeRequestsSendTheirArgumentsAsGiven)
{
    for (const auto *path : {"verify-otp", "resend-otp", "forgot-password", "reset-password"})
        server.expect("POST", u"/api/auth/"_s + QString::fromLatin1(path))
            .withHeader("Authorization", "")
            .reply(200, R"({"message":"m"})");
    storeTokens(u"a"_s, u"r"_s);
    const auto before = tokens.writes().size();
    EXPECT_EQ(await(store.verifyOtp(u" e "_s, u"123456"_s)).message, u"m"_s);
    EXPECT_EQ(lastBody(), R"({"email":" e ","code":"123456"})");
    await(store.resendOtp(u" e "_s));
    EXPECT_EQ(lastBody(), R"({"email":" e "})");
    await(store.forgotPassword(u"e"_s));
    EXPECT_EQ(lastBody(), R"({"email":"e"})");
    await(store.resetPassword(u"e"_s, u"12"_s, u" n "_s));
    EXPECT_EQ(lastBody(), R"({"email":"e","code":"12","newPassword":" n "})");
    EXPECT_EQ(tokens.writes().size(), before);
    EXPECT_EQ(store.phase(), AuthStore::Phase::Loading);
}

TEST_F(AuthStoreTest, VerifyOtpRethrowsTheServersMessage)
{
    server.expect("POST", "/api/auth/verify-otp")
        .reply(400, R"({"error":"BAD_CODE","message":["Wrong.","Old."]})");
    const auto error = awaitError<APIError>(store.verifyOtp(u"e"_s, u"1"_s));
    EXPECT_EQ(error.message, u"Wrong., Old."_s);
    EXPECT_EQ(error.code, u"BAD_CODE"_s);
}

TEST_F(AuthStoreTest, DestroyingTheStoreDuringLoginIsSafe)
{
    server.expect("POST", "/api/auth/login").after(1s).reply(200, loginReply());
    auto shortLived = std::make_unique<AuthStore>(api, tokens);
    shortLived->login(u"a"_s, u"b"_s);
    ASSERT_TRUE(server.waitForRequests(1));
    shortLived.reset();
    test::spinUntil([] { return false; }, 1500ms);
    EXPECT_TRUE(tokens.writes().isEmpty());
}

} // namespace
} // namespace clockwell
