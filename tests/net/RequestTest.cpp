#include "net/ClientFixture.h"
#include "net/TestCertificate.h"

#include <QList>
#include <QThread>

#include <limits>

namespace clockwell::test {

namespace {

using Kind = TransportError::Kind;
using namespace std::chrono_literals;

class Request : public ClientTest
{
protected:
    /// The error of a reply with this status and body.
    APIError errorFor(int status, const QByteArray &body)
    {
        server.expect("GET", "/api/thing").reply(status, body);
        return awaitError<APIError>(get("thing", false));
    }

    /// Checks that even after a while the path was requested once and no further connection was opened for
    /// it.
    void expectOneRequest()
    {
        const int connections = server.connections();
        spinUntil([] { return false; }, 150ms);
        EXPECT_EQ(server.count(QStringLiteral("/api/thing")), 1);
        EXPECT_EQ(server.connections(), connections);
        EXPECT_EQ(server.requests().last().connection, connections);
    }
};

struct Position
{
    double lat;
    QString note;
};
BOOST_DESCRIBE_STRUCT(Position, (), (lat, note))

} // namespace

TEST_F(Request, GetHasAcceptAndBearerButNoContentType)
{
    server.expect("GET", "/api/attendance/today").reply(200, "{}");
    await(get("attendance/today"));
    const FakeServer::Request sent = server.requests().at(0);
    EXPECT_EQ(sent.target, "/api/attendance/today");
    EXPECT_EQ(sent.header("Accept"), "application/json");
    EXPECT_EQ(sent.header("Authorization"), "Bearer a1");
    EXPECT_FALSE(sent.has("Content-Type"));
    EXPECT_FALSE(sent.has("Cookie"));
    EXPECT_FALSE(sent.has("Cache-Control"));
    EXPECT_EQ(sent.body, "");
}

TEST_F(Request, PostSendsItsBodyAsJson)
{
    server.expect("POST", "/api/auth/login").reply(200, "{}");
    await(post("auth/login", false));
    const FakeServer::Request sent = server.requests().at(0);
    EXPECT_EQ(sent.header("Content-Type"), "application/json");
    EXPECT_EQ(sent.header("Accept"), "application/json");
    EXPECT_EQ(sent.body, R"({"text":"hi"})");
    EXPECT_FALSE(sent.has("Authorization"));
}

TEST_F(Request, PostWithoutBodyHasNoContentType)
{
    server.expect("POST", "/api/thing").reply(200, "{}");
    await(client().request<MessageResponse>(QStringLiteral("thing"), QStringLiteral("POST"), {}, std::nullopt,
                                            false));
    EXPECT_EQ(server.requests().at(0).body, "");
    EXPECT_FALSE(server.requests().at(0).has("Content-Type"));
}

TEST_F(Request, WithoutStoredTokenHasNoAuthorizationHeader)
{
    clearTokens(tokens);
    server.expect("GET", "/api/thing").reply(200, "{}");
    await(get());
    EXPECT_FALSE(server.requests().at(0).has("Authorization"));
}

TEST_F(Request, EmptyStoredTokenIsSent)
{
    tokens.save(TokenKey::accessToken, QStringLiteral(""));
    server.expect("GET", "/api/thing").reply(200, "{}");
    await(get());
    EXPECT_TRUE(server.requests().at(0).has("Authorization"));
    EXPECT_EQ(server.requests().at(0).header("Authorization"), "Bearer");
}

TEST_F(Request, TokenWithControlCharactersIsNotSent)
{
    tokens.save(TokenKey::accessToken, QStringLiteral("a\r\nX-Other: 1"));
    server.expect("GET", "/api/thing").reply(200, "{}");
    await(get());
    EXPECT_FALSE(server.requests().at(0).has("Authorization"));
    EXPECT_FALSE(server.requests().at(0).has("X-Other"));
}

TEST_F(Request, LeadingAndTrailingSlashesOfThePathAreIgnored)
{
    server.expect("GET", "/api/auth/me").times(4).reply(200, "{}");
    for (const char *path : {"auth/me", "/auth/me", "auth/me/", "//auth/me//"})
        await(get(path));
    for (const FakeServer::Request &sent : server.requests())
        EXPECT_EQ(sent.target, "/api/auth/me");
}

TEST_F(Request, QueryIsPercentEncoded)
{
    const QMap<QString, QString> query{{QStringLiteral("lat"), QStringLiteral("-12.9715987")},
                                       {QStringLiteral("odd"), QString::fromUtf8("a b+c&d=e#f%20é/?")}};
    server.expect("GET", "/api/thing").reply(200, "{}");
    await(client().request<MessageResponse>(QStringLiteral("thing"), QStringLiteral("GET"), query,
                                            std::nullopt, false));
    EXPECT_EQ(server.requests().at(0).query, query);
    EXPECT_EQ(server.requests().at(0).target,
              "/api/thing?lat=-12.9715987&odd=a%20b%2Bc%26d%3De%23f%2520%C3%A9%2F%3F");
}

TEST_F(Request, PathIsPercentEncoded)
{
    server.expect("GET", "/api/a b?c#d%e").reply(200, "{}");
    await(get("a b?c#d%e"));
    EXPECT_EQ(server.requests().at(0).target, "/api/a%20b%3Fc%23d%25e");
}

TEST_F(Request, BodyThatCannotBeEncodedSendsNothing)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(await(client().request<MessageResponse>(QStringLiteral("thing"), QStringLiteral("POST"), {},
                                                         std::optional(Position{nan, {}}), true)),
                 EncodingError);
    EXPECT_THROW(
        await(client().request<MessageResponse>(QStringLiteral("thing"), QStringLiteral("POST"), {},
                                                std::optional(Position{1, QString(QChar(0xd800))}), true)),
        EncodingError);
    EXPECT_EQ(server.requests().size(), 0);
    expectUsable();
}

TEST_F(Request, ErrorBodyGivesMessageCodeAndStatus)
{
    const APIError error = errorFor(400, R"({"statusCode":499,"error":"BAD","message":"No."})");
    EXPECT_EQ(error.message, QStringLiteral("No."));
    EXPECT_EQ(error.code, QStringLiteral("BAD"));
    EXPECT_EQ(error.httpStatus, 400);
    EXPECT_EQ(errorText(error), QStringLiteral("No."));
    EXPECT_STREQ(error.what(), "No.");
}

TEST_F(Request, ErrorBodyWithAListOfMessagesJoinsThem)
{
    const APIError error =
        errorFor(400, R"({"statusCode":400,"error":"VALIDATION","message":["a is b","c is d"]})");
    EXPECT_EQ(error.message, QStringLiteral("a is b, c is d"));
    EXPECT_EQ(error.code, QStringLiteral("VALIDATION"));
    EXPECT_EQ(error.httpStatus, 400);
}

TEST_F(Request, ErrorBodyWithoutMessageGivesRequestFailed)
{
    for (const char *body : {"{}", R"({"message":null})", R"({"message":42})"}) {
        const APIError error = errorFor(500, body);
        EXPECT_EQ(error.message, QStringLiteral("Request failed")) << body;
        EXPECT_EQ(error.code, std::nullopt);
        EXPECT_EQ(error.httpStatus, 500);
    }
}

TEST_F(Request, ErrorBodyThatIsNotAnErrorObjectGivesTheStatus)
{
    for (const QByteArray &body :
         {QByteArray("<html>Bad gateway</html>"), QByteArray(), QByteArray("[1]"), QByteArray("\"text\""),
          QByteArray("null"), QByteArray(R"({"error":5})")}) {
        const APIError error = errorFor(502, body);
        EXPECT_EQ(error.message, QStringLiteral("Request failed (502).")) << body.toStdString();
        EXPECT_EQ(error.code, std::nullopt);
        EXPECT_EQ(error.httpStatus, 502);
    }
}

TEST_F(Request, StatusOutside2xxIsAnError)
{
    for (const int status :
         {300, 304, 400, 401, 403, 404, 407, 409, 410, 418, 422, 429, 451, 500, 501, 503, 504, 599})
        EXPECT_EQ(errorFor(status, "").httpStatus, status);
}

TEST_F(Request, Status2xxIsASuccess)
{
    for (const int status : {200, 201, 202, 206, 299}) {
        server.expect("GET", "/api/thing").reply(status, R"({"message":"m"})");
        EXPECT_EQ(await(get()).message, QStringLiteral("m")) << status;
    }
}

TEST_F(Request, SuccessBodyThatDoesNotDecodeIsUnexpected)
{
    for (const QByteArray &body :
         {QByteArray("{}"), QByteArray(), QByteArray("<html></html>"), QByteArray("null"), QByteArray("[]"),
          QByteArray("{\"accessToken\":\"\xff\",\"refreshToken\":\"r\"}")}) {
        server.expect("GET", "/api/thing").reply(201, body);
        const auto error = awaitError<APIError>(get<TokenPair>());
        EXPECT_EQ(error.message, QStringLiteral("Unexpected response from server.")) << body.toStdString();
        EXPECT_EQ(error.code, std::nullopt);
        EXPECT_EQ(error.httpStatus, 201);
    }
}

TEST_F(Request, EmptyResultIgnoresTheBody)
{
    server.expect("POST", "/api/auth/change-password").reply(204);
    await(post<Empty>("auth/change-password"));
    server.expect("POST", "/api/auth/change-password").reply(200, "<html>");
    await(post<Empty>("auth/change-password"));
    server.expect("POST", "/api/auth/change-password").reply(400, R"({"message":"Too short."})");
    EXPECT_EQ(awaitError<APIError>(post<Empty>("auth/change-password")).message,
              QStringLiteral("Too short."));
}

TEST_F(Request, NullGivesAnEmptyOptionalResult)
{
    server.expect("GET", "/api/auth/me").reply(200, "null");
    EXPECT_FALSE(await(get<std::optional<AuthUser>>("auth/me")));
    server.expect("GET", "/api/auth/me").reply(200, "{}");
    EXPECT_EQ(awaitError<APIError>(get<std::optional<AuthUser>>("auth/me")).message,
              QStringLiteral("Unexpected response from server."));
}

TEST_F(Request, ListsAndBadDatesAreDecodedTheSameWay)
{
    server.expect("GET", "/api/attendance/me").reply(200, R"([{"id":"1","workDate":"d","status":"s"}])");
    EXPECT_EQ(await(get<QList<AttendanceRecord>>("attendance/me")).size(), 1);
    server.expect("GET", "/api/attendance/me")
        .reply(200, R"([{"id":"1","workDate":"d","status":"s","checkInAt":"2024-05-01"}])");
    EXPECT_EQ(awaitError<APIError>(get<QList<AttendanceRecord>>("attendance/me")).message,
              QStringLiteral("Unexpected response from server."));
}

TEST_F(Request, UnauthorizedCallIsNeverRenewed)
{
    server.expect("POST", "/api/auth/login")
        .reply(401, R"({"error":"BAD_CREDENTIALS","message":"Wrong password."})");
    const auto error = awaitError<APIError>(post("auth/login", false));
    EXPECT_EQ(error.message, QStringLiteral("Wrong password."));
    EXPECT_EQ(error.code, QStringLiteral("BAD_CREDENTIALS"));
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(Request, AuthenticationChallengeIsNotAnswered)
{
    for (const char *challenge :
         {"Basic realm=\"x\"", "Digest realm=\"x\", nonce=\"y\"", "Negotiate", "NTLM"}) {
        server.expect("POST", "/api/auth/login").reply(401, "{}").header("WWW-Authenticate", challenge);
        EXPECT_EQ(awaitError<APIError>(post("auth/login", false)).httpStatus, 401) << challenge;
    }
    EXPECT_EQ(server.requests().size(), 4);
}

TEST_F(Request, RedirectIsNotFollowed)
{
    FakeServer elsewhere;
    for (const QByteArray &target :
         {elsewhere.url(QStringLiteral("/api/thing")).toEncoded(), QByteArray("/api/other")}) {
        for (const int status : {301, 302, 303, 307, 308}) {
            server.expect("GET", "/api/thing").reply(status).header("Location", target);
            EXPECT_EQ(awaitError<APIError>(get()).httpStatus, status);
            server.expect("POST", "/api/thing").reply(status).header("Location", target);
            EXPECT_EQ(awaitError<APIError>(post()).message,
                      QStringLiteral("Request failed (%1).").arg(status));
        }
    }
    EXPECT_EQ(elsewhere.requests().size(), 0);
    EXPECT_EQ(elsewhere.connections(), 0);
    EXPECT_EQ(server.count(QStringLiteral("/api/other")), 0);
}

TEST_F(Request, CookiesAreNotKept)
{
    server.expect("GET", "/api/thing").reply(200, "{}").header("Set-Cookie", "s=1; Path=/");
    await(get());
    server.expect("GET", "/api/thing").reply(200, "{}");
    await(get());
    EXPECT_FALSE(server.requests().at(1).has("Cookie"));
}

TEST_F(Request, RepliesAreNotCached)
{
    for (int i = 0; i < 2; ++i) {
        server.expect("GET", "/api/thing").reply(200, "{}").header("Cache-Control", "max-age=3600");
        await(get());
    }
    EXPECT_EQ(server.requests().size(), 2);
}

TEST_F(Request, PostIsSentOnceWhenTheServerClosesWithoutAReply)
{
    server.expect("POST", "/api/thing").close();
    EXPECT_EQ(transportError(post()), Kind::ConnectionLost);
    expectOneRequest();
}

TEST_F(Request, PostIsSentOnceWhenTheServerClosesLater)
{
    server.expect("POST", "/api/thing").after(100ms).close();
    EXPECT_EQ(transportError(post()), Kind::ConnectionLost);
    expectOneRequest();
}

TEST_F(Request, PostIsSentOnceWhenTheServerResetsTheConnection)
{
    server.expect("POST", "/api/thing").reset();
    EXPECT_EQ(transportError(post()), Kind::ConnectionLost);
    expectOneRequest();
}

TEST_F(Request, PostIsSentOnceWhenTheReplyHeaderIsTruncated)
{
    server.expect("POST", "/api/thing").raw("HTTP/1.1 200 OK\r\nContent-Le").thenClose();
    EXPECT_EQ(transportError(post()), Kind::ConnectionLost);
    expectOneRequest();
}

TEST_F(Request, PostIsSentOnceAfterARequestThatKeptItsConnection)
{
    server.expect("GET", "/api/warm").reply(200, "{}");
    await(get("warm"));
    server.expect("POST", "/api/thing").close();
    EXPECT_EQ(transportError(post()), Kind::ConnectionLost);
    expectOneRequest();
}

TEST_F(Request, PostWithoutBodyIsSentOnceToo)
{
    server.expect("POST", "/api/thing").close();
    EXPECT_EQ(transportError(client().request<MessageResponse>(
                  QStringLiteral("thing"), QStringLiteral("POST"), {}, std::nullopt, false)),
              Kind::ConnectionLost);
    expectOneRequest();
}

TEST_F(Request, EachPostOpensItsOwnConnectionAndGetsShareOne)
{
    server.expect("GET", "/api/thing").times(3).reply(200, "{}");
    server.expect("POST", "/api/thing").times(2).reply(200, "{}");
    await(get());
    await(post());
    await(get());
    await(post());
    await(get());
    const QList<FakeServer::Request> sent = server.requests();
    EXPECT_EQ(sent[0].connection, sent[2].connection);
    EXPECT_EQ(sent[0].connection, sent[4].connection);
    EXPECT_NE(sent[1].connection, sent[0].connection);
    EXPECT_NE(sent[3].connection, sent[0].connection);
    EXPECT_NE(sent[1].connection, sent[3].connection);
}

TEST_F(Request, NothingHappensBeforeTheFirstRequest)
{
    client();
    spinUntil([] { return false; }, 50ms);
    EXPECT_EQ(server.connections(), 0);
}

TEST_F(Request, RunsOnTheClientsThreadAndResumesOnTheCallers)
{
    QThread *here = QThread::currentThread();
    QThread *worked = nullptr;
    QThread *resumed = nullptr;
    const int answer = await(client().perform<int>([&] {
        worked = QThread::currentThread();
        return 42;
    }));
    EXPECT_EQ(answer, 42);
    QThread *workedNext = nullptr;
    await(client().perform<void>([&] { workedNext = QThread::currentThread(); }));
    EXPECT_NE(worked, here);
    EXPECT_EQ(workedNext, worked);
    const auto work = [](QCoro::Task<MessageResponse> task, QThread **where) -> QCoro::Task<> {
        try {
            co_await task;
        } catch (const APIError &) {
        }
        *where = QThread::currentThread();
    };
    server.expect("GET", "/api/thing").reply(500);
    await(work(get(), &resumed));
    EXPECT_EQ(resumed, here);
}

TEST_F(Request, PerformForwardsExceptionsAndKeepsTheOrder)
{
    EXPECT_THROW(await(client().perform<void>([] { throw APIError(QStringLiteral("x")); })), APIError);
    QList<int> order;
    const auto first = observe(client().perform<void>([&] { order += 1; }));
    const auto second = observe(client().perform<void>([&] { order += 2; }));
    EXPECT_TRUE(spinUntil([&] { return first->done && second->done; }));
    EXPECT_EQ(order, (QList<int>{1, 2}));
}

TEST_F(Request, SystemProxyIsUsedForOtherMachinesOnly)
{
    qputenv("http_proxy", server.url().toEncoded());
    APIClient::Options elsewhere = options();
    elsewhere.baseURL = QUrl(QStringLiteral("http://clockwell.invalid/api"));
    APIClient other(elsewhere, tokens, events);
    server.expect("GET", "/api/thing").reply(200, "{}");
    await(other.request<MessageResponse>(QStringLiteral("thing"), QStringLiteral("GET"), {}, std::nullopt,
                                         false));
    EXPECT_EQ(server.requests().at(0).target, "http://clockwell.invalid/api/thing");
    server.expect("GET", "/api/thing").reply(200, "{}");
    await(get());
    EXPECT_EQ(server.requests().at(1).target, "/api/thing");
    qunsetenv("http_proxy");
}

TEST_F(Request, RequestsRunConcurrently)
{
    server.expect("GET", "/api/slow").after(3s).reply(200, "{}");
    server.expect("GET", "/api/fast").reply(200, "{}");
    const auto slow = observe(get("slow"));
    await(get("fast"));
    EXPECT_FALSE(slow->done);
    EXPECT_TRUE(spinUntil([&] { return slow->done; }));
}

TEST_F(Request, RequestsRunConcurrentlyOverTlsToo)
{
    const TestCertificate certificate;
    FakeServer secure(certificate.serverTls());
    changeOptions([&](APIClient::Options &options) {
        options.baseURL = secure.url(QStringLiteral("/api"));
        options.certificateFile = certificate.certificateFile();
    });
    secure.expect("GET", "/api/slow").after(3s).reply(200, "{}");
    secure.expect("GET", "/api/fast").reply(200, "{}");
    const auto slow = observe(get("slow"));
    await(get("fast"));
    EXPECT_FALSE(slow->done);
    EXPECT_TRUE(spinUntil([&] { return slow->done; }));
}

} // namespace clockwell::test
