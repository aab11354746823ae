#include "net/ClientFixture.h"
#include "net/TestCertificate.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <zlib.h>

namespace clockwell::test {

namespace {

using Kind = TransportError::Kind;
using namespace std::chrono_literals;

class BadReply : public ClientTest
{
protected:
    Kind kindFor(const QByteArray &raw)
    {
        server.expect("GET", "/api/thing").anyNumber().raw(raw).thenClose();
        return transportError(get());
    }
    QString textFor(const QByteArray &body)
    {
        server.expect("GET", "/api/thing").reply(200, body);
        return awaitError<APIError>(get<TokenPair>()).message;
    }
    /// A client with its own reply limit, because the default would be slow to exceed.
    std::unique_ptr<APIClient> clientWithLimit(qint64 bytes)
    {
        APIClient::Options small = options();
        small.replyLimit = bytes;
        return std::make_unique<APIClient>(small, tokens, events);
    }

    const QString m_unexpected = QStringLiteral("Unexpected response from server.");
};

QCoro::Task<MessageResponse> getFrom(APIClient &client)
{
    return client.request<MessageResponse>(QStringLiteral("thing"), QStringLiteral("GET"), {}, std::nullopt,
                                           false);
}

QByteArray gzip(const QByteArray &plain)
{
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 9, Z_DEFAULT_STRATEGY);
    QByteArray packed(static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(plain.size()))), '\0');
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(plain.data()));
    stream.avail_in = static_cast<uInt>(plain.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packed;
}

QByteArray messageOf(qsizetype totalBytes)
{
    const QByteArray head = R"({"message":")";
    return head + QByteArray(totalBytes - head.size() - 2, 'x') + "\"}";
}

QByteArray chunked(const QByteArray &body)
{
    QByteArray bytes = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (qsizetype at = 0; at < body.size(); at += 50'000) {
        const QByteArray piece = body.mid(at, 50'000);
        bytes += QByteArray::number(piece.size(), 16) + "\r\n" + piece + "\r\n";
    }
    return bytes + "0\r\n\r\n";
}

} // namespace

TEST_F(BadReply, TruncatedBodyIsALostConnection)
{
    EXPECT_EQ(kindFor("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"message\":"), Kind::ConnectionLost);
    expectUsable();
}

TEST_F(BadReply, TruncatedErrorBodyIsALostConnection)
{
    EXPECT_EQ(kindFor("HTTP/1.1 500 No\r\nContent-Length: 100\r\n\r\n{\"message\":"), Kind::ConnectionLost);
    expectUsable();
}

TEST_F(BadReply, TruncatedChunkIsALostConnection)
{
    EXPECT_EQ(kindFor("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n20\r\n{\"message\":"),
              Kind::ConnectionLost);
    expectUsable();
}

TEST_F(BadReply, MissingLastChunkIsALostConnection)
{
    EXPECT_EQ(kindFor("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n"),
              Kind::ConnectionLost);
    expectUsable();
}

TEST_F(BadReply, TruncatedHeaderIsALostConnection)
{
    EXPECT_EQ(kindFor("HTTP/1.1 200 OK\r\nContent-Le"), Kind::ConnectionLost);
    expectUsable();
}

TEST_F(BadReply, ContentLengthShorterThanTheBodyTruncatesItAndFailsToDecode)
{
    server.expect("GET", "/api/thing")
        .raw("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n{\"message\":\"m\"}")
        .thenClose();
    EXPECT_EQ(awaitError<APIError>(get()).message, m_unexpected);
    expectUsable();
}

TEST_F(BadReply, EmptyReplyIsALostConnection)
{
    EXPECT_EQ(kindFor(""), Kind::ConnectionLost);
    expectUsable();
}

TEST_F(BadReply, ResetConnectionIsALostConnection)
{
    server.expect("GET", "/api/thing").anyNumber().reset();
    EXPECT_EQ(transportError(get()), Kind::ConnectionLost);
    expectUsable();
}

TEST_F(BadReply, ResetDuringTheBodyIsALostConnection)
{
    server.expect("GET", "/api/thing").raw("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{").thenReset();
    EXPECT_EQ(transportError(get()), Kind::ConnectionLost);
    expectUsable();
}

TEST_F(BadReply, InvalidJsonIsUnexpected)
{
    EXPECT_EQ(textFor("{\"accessToken\":\"\xff\xfe\",\"refreshToken\":\"r\"}"), m_unexpected);
    EXPECT_EQ(textFor(QByteArray(200, '[') + QByteArray(200, ']')), m_unexpected);
    EXPECT_EQ(textFor("<!DOCTYPE html><html><body>Sign in to the Wi-Fi</body></html>"), m_unexpected);
    EXPECT_EQ(textFor(QByteArray("{\"accessToken\":\"a\0\",\"refreshToken\":\"r\"}", 40)), m_unexpected);
    expectUsable();
}

TEST_F(BadReply, NumberBeyond64BitsIsUnexpected)
{
    server.expect("GET", "/api/thing")
        .reply(200, R"({"type":"IN","inside":true,"lateMinutes":9223372036854775808})");
    EXPECT_EQ(awaitError<APIError>(get<PunchResponse>()).message, m_unexpected);
    expectUsable();
}

TEST_F(BadReply, BigNumberInAnErrorBodyKeepsItsMessageAndCode)
{
    server.expect("GET", "/api/thing")
        .reply(409, R"({"message":"No.","error":"CLOSED","traceId":123456789012345678901234567890})");
    const APIError error = awaitError<APIError>(get());
    EXPECT_EQ(error.message, QStringLiteral("No."));
    EXPECT_EQ(error.code, QStringLiteral("CLOSED"));
    server.expect("GET", "/api/thing")
        .reply(200, R"({"inside":true,"distanceMeters":100000000000000000000,"radiusMeters":150})");
    EXPECT_EQ(await(get<DistanceResponse>()).distanceMeters, 1e20);
    expectUsable();
}

TEST_F(BadReply, EscapedNulIsAnOrdinaryCharacter)
{
    server.expect("GET", "/api/thing").reply(200, R"({"message":"a\u0000b"})");
    EXPECT_EQ(await(get()).message, QStringLiteral("a") + QChar(0) + u'b');
}

TEST_F(BadReply, ReplyThatIsNotHttpIsNeverASuccess)
{
    server.expect("GET", "/api/thing").anyNumber().raw("SSH-2.0-OpenSSH_9.2\r\n").thenClose();
    EXPECT_THROW(await(get()), UserFacingError);
    expectUsable();
}

TEST_F(BadReply, SilentServerTimesOut)
{
    limit(1s, 40s);
    server.expect("GET", "/api/thing").never();
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(awaitError<TransportError>(get()).text(), QStringLiteral("The request timed out."));
    EXPECT_GE(clock.elapsed(), 1000);
    EXPECT_LT(clock.elapsed(), 20'000);
    expectUsable();
}

TEST_F(BadReply, TimedOutPostIsNotSentAgain)
{
    limit(1s, 40s);
    server.expect("POST", "/api/thing").never();
    EXPECT_EQ(transportError(post()), Kind::TimedOut);
    EXPECT_EQ(server.count(QStringLiteral("/api/thing")), 1);
    expectUsable();
}

TEST_F(BadReply, ServerThatStopsDuringTheBodyTimesOut)
{
    limit(1s, 40s);
    server.expect("GET", "/api/thing").raw("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{");
    EXPECT_EQ(transportError(get()), Kind::TimedOut);
    expectUsable();
}

TEST_F(BadReply, SlowReplyExceedsTheTotalLimit)
{
    limit(2s, 3s);
    server.expect("GET", "/api/thing").reply(200, messageOf(20'000)).drip(60, 50ms); // for 17 seconds
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(transportError(get()), Kind::TimedOut);
    EXPECT_GE(clock.elapsed(), 3000);
    EXPECT_LT(clock.elapsed(), 14'000);
    expectUsable();
}

TEST_F(BadReply, SlowButSteadyReplyDoesNotTimeOut)
{
    limit(1500ms, 40s);
    server.expect("GET", "/api/thing").reply(200, messageOf(100)).drip(4, 60ms); // longer than that
    EXPECT_EQ(await(get()).message->size(), 86);
}

TEST_F(BadReply, ClosedPortIsCannotConnect)
{
    server.goDown();
    EXPECT_EQ(awaitError<TransportError>(get()).text(), QStringLiteral("Could not connect to the server."));
    EXPECT_EQ(awaitError<TransportError>(post()).kind, Kind::CannotConnect);
}

TEST_F(BadReply, UnknownHostIsHostNotFound)
{
    APIClient::Options elsewhere = options();
    elsewhere.baseURL = QUrl(QStringLiteral("http://host.invalid/api"));
    elsewhere.totalLimit = 8s;
    APIClient other(elsewhere, tokens, events);
    const Kind kind = transportError(getFrom(other));
    EXPECT_TRUE(kind == Kind::HostNotFound || kind == Kind::TimedOut) << static_cast<int>(kind);
}

TEST_F(BadReply, ReplyOfSixteenMebibytesIsAcceptedAndOneByteMoreIsTooLarge)
{
    const qsizetype limit = 16 * 1024 * 1024;
    server.expect("GET", "/api/thing").reply(200, messageOf(limit));
    EXPECT_EQ(await(get()).message->size(), limit - 14);
    server.expect("GET", "/api/thing").reply(200, messageOf(limit + 1));
    EXPECT_EQ(awaitError<TransportError>(get()).text(),
              QStringLiteral("The reply from the server is too large."));
    expectUsable();
}

TEST_F(BadReply, TooLargeContentLengthIsRefusedAtOnce)
{
    server.expect("GET", "/api/thing").raw("HTTP/1.1 200 OK\r\nContent-Length: 99999999999\r\n\r\n{");
    EXPECT_EQ(transportError(get()), Kind::ReplyTooLarge);
    expectUsable();
}

TEST_F(BadReply, ChunkedReplyIsLimitedToo)
{
    const auto small = clientWithLimit(300'000);
    server.expect("GET", "/api/thing").raw(chunked(messageOf(300'000)));
    EXPECT_EQ(await(getFrom(*small)).message->size(), 300'000 - 14);
    server.expect("GET", "/api/thing").raw(chunked(messageOf(300'001)));
    EXPECT_EQ(transportError(getFrom(*small)), Kind::ReplyTooLarge);
    expectUsable();
}

TEST_F(BadReply, ReplyWithoutLengthIsLimitedToo)
{
    const auto small = clientWithLimit(300'000);
    server.expect("GET", "/api/thing")
        .anyNumber()
        .raw("HTTP/1.1 200 OK\r\n\r\n" + messageOf(300'001))
        .thenClose();
    EXPECT_EQ(transportError(getFrom(*small)), Kind::ReplyTooLarge);
    expectUsable();
}

TEST_F(BadReply, CompressedReplyIsLimitedAfterDecompression)
{
    server.expect("GET", "/api/thing")
        .reply(200, gzip(messageOf(16 * 1024 * 1024)))
        .header("Content-Encoding", "gzip");
    EXPECT_EQ(await(get()).message->size(), 16 * 1024 * 1024 - 14);
    server.expect("GET", "/api/thing")
        .reply(200, gzip(messageOf(64 * 1024 * 1024)))
        .header("Content-Encoding", "gzip");
    EXPECT_EQ(transportError(get()), Kind::ReplyTooLarge);
    expectUsable();
}

TEST_F(BadReply, BodyThatCannotBeDecompressedIsAnError)
{
    server.expect("GET", "/api/thing").reply(200, "not gzip at all").header("Content-Encoding", "gzip");
    EXPECT_THROW(await(get()), UserFacingError);
    expectUsable();
}

TEST_F(BadReply, ErrorBodiesAreLimitedToo)
{
    const auto small = clientWithLimit(1000);
    server.expect("GET", "/api/thing").reply(500, messageOf(1001));
    EXPECT_EQ(transportError(getFrom(*small)), Kind::ReplyTooLarge);
}

TEST_F(BadReply, TruncatedCompressedBodyIsNeverASuccess)
{
    const QByteArray packed = gzip(messageOf(1000));
    server.expect("GET", "/api/thing").reply(200, packed.chopped(12)).header("Content-Encoding", "gzip");
    EXPECT_THROW(await(get()), UserFacingError);
    expectUsable();
}

TEST_F(BadReply, ConnectionClosedDuringTheTlsHandshakeIsALostConnection)
{
    QTcpServer hangsUp;
    ASSERT_TRUE(hangsUp.listen(QHostAddress::LocalHost));
    QObject::connect(&hangsUp, &QTcpServer::newConnection,
                     [&] { hangsUp.nextPendingConnection()->disconnectFromHost(); });
    APIClient::Options elsewhere = options();
    elsewhere.baseURL = QUrl(QStringLiteral("https://127.0.0.1:%1/api").arg(hangsUp.serverPort()));
    APIClient other(elsewhere, tokens, events);
    EXPECT_EQ(transportError(getFrom(other)), Kind::ConnectionLost);
}

TEST_F(BadReply, TrustedCertificateOfAnotherHostIsRefused)
{
    const TestCertificate certificate;
    FakeServer secure(certificate.serverTls());
    APIClient::Options secureOptions = options();
    secureOptions.baseURL = secure.url(QStringLiteral("/api"));
    secureOptions.baseURL.setHost(QStringLiteral("localhost"));
    secureOptions.certificateFile = certificate.certificateFile();
    APIClient other(secureOptions, tokens, events);
    EXPECT_EQ(transportError(getFrom(other)), Kind::UntrustedCertificate);
    EXPECT_EQ(secure.requests().size(), 0);
}

TEST_F(BadReply, UntrustedCertificateIsRefusedAndNothingIsSent)
{
    const TestCertificate certificate;
    FakeServer secure(certificate.serverTls());
    APIClient::Options secureOptions = options();
    secureOptions.baseURL = secure.url(QStringLiteral("/api"));
    APIClient other(secureOptions, tokens, events);
    EXPECT_EQ(awaitError<TransportError>(getFrom(other)).text(),
              QStringLiteral("The server's certificate is not trusted."));
    EXPECT_EQ(secure.requests().size(), 0);
}

} // namespace clockwell::test
