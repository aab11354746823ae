#include "net/ClientFixture.h"

namespace clockwell::test {

namespace {

using Kind = TransportError::Kind;

const QByteArray earlyHints = "HTTP/1.1 103 Early Hints\r\nLink: </style.css>; rel=preload\r\n\r\n";

QByteArray answer(const QByteArray &body)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
           QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

/// An interim reply (1xx) precedes the final reply and must never be taken for it.
class InterimReply : public ClientTest
{
protected:
    const QByteArray m_body = R"({"message":"m"})";
};

} // namespace

TEST_F(InterimReply, EarlyHintsBeforeAReply)
{
    for (int i = 0; i < 2; ++i) {
        server.expect("GET", "/api/thing").raw(earlyHints + answer(m_body));
        EXPECT_EQ(await(get()).message, QStringLiteral("m"));
    }
    EXPECT_EQ(server.connections(), 1);
}

TEST_F(InterimReply, EarlyHintsBeforeTheReplyToAPost)
{
    server.expect("POST", "/api/thing").raw(earlyHints + answer(m_body));
    EXPECT_EQ(await(post()).message, QStringLiteral("m"));
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(InterimReply, EarlyHintsBeforeARefreshDoNotSignOut)
{
    server.expect("GET", "/api/thing").withHeader("Authorization", "Bearer a1").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").raw(earlyHints + answer(newTokens));
    server.expect("GET", "/api/thing").withHeader("Authorization", "Bearer a2").reply(200, m_body);
    EXPECT_EQ(await(get()).message, QStringLiteral("m"));
    EXPECT_EQ(tokens.refresh(), QStringLiteral("r2"));
    EXPECT_FALSE(events.expiredAt());
}

TEST_F(InterimReply, SeveralBeforeOneReply)
{
    const QByteArray several = "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 102 Processing\r\n\r\n" + earlyHints +
                               earlyHints + "HTTP/1.1 199 Whatever\r\n\r\n";
    server.expect("GET", "/api/thing").raw(several + answer(m_body));
    EXPECT_EQ(await(get()).message, QStringLiteral("m"));
    server.expect("POST", "/api/thing").raw(several + answer(m_body));
    EXPECT_EQ(await(post()).message, QStringLiteral("m"));
}

TEST_F(InterimReply, BeforeAnError)
{
    server.expect("GET", "/api/thing")
        .raw(earlyHints + "HTTP/1.1 409 No\r\nContent-Length: 17\r\n\r\n{\"message\":\"No.\"}");
    const APIError error = awaitError<APIError>(get());
    EXPECT_EQ(error.message, QStringLiteral("No."));
    EXPECT_EQ(error.httpStatus, 409);
}

TEST_F(InterimReply, WithoutFinalReplyIsALostConnection)
{
    server.expect("GET", "/api/thing").anyNumber().raw(earlyHints).thenClose();
    EXPECT_EQ(transportError(get()), Kind::ConnectionLost);
    server.expect("GET", "/api/half").anyNumber().raw(earlyHints + "HTTP/1.1 200 OK\r\nContent").thenClose();
    EXPECT_EQ(transportError(get("half")), Kind::ConnectionLost);
}

TEST_F(InterimReply, WithoutFinalReplyDoesNotSignOut)
{
    server.expect("GET", "/api/thing").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").raw(earlyHints).thenClose();
    EXPECT_EQ(transportError(get()), Kind::ConnectionLost);
    EXPECT_EQ(tokens.refresh(), QStringLiteral("r1"));
    EXPECT_FALSE(events.expiredAt());
}

TEST_F(InterimReply, UnrequestedSwitchOfProtocolsIsNotAReply)
{
    const QByteArray switching =
        "HTTP/1.1 101 Switching Protocols\r\nUpgrade: x\r\nConnection: Upgrade\r\n\r\n";
    server.expect("GET", "/api/thing").raw(switching + "bytes of x").thenClose();
    EXPECT_THROW(await(get()), TransportError);
    server.expect("GET", "/api/thing").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").raw(switching).thenClose();
    EXPECT_THROW(await(get()), TransportError);
    EXPECT_EQ(tokens.refresh(), QStringLiteral("r1"));
}

} // namespace clockwell::test
