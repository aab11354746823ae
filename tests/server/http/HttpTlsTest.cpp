#include "TestServer.h"
#include "TlsClient.h"

#include <gtest/gtest.h>
#include <openssl/ssl.h>

#include <stdexcept>

namespace clockwell::server {

class HttpTlsTest : public testing::Test
{
protected:
    static constexpr TlsClient::Versions tls12{TLS1_2_VERSION, TLS1_2_VERSION};
    static constexpr TlsClient::Versions tls13{TLS1_3_VERSION, TLS1_3_VERSION};

    static void SetUpTestSuite() { s_certificate = new TestCertificate; }
    static void TearDownTestSuite()
    {
        delete s_certificate;
        s_certificate = nullptr;
    }

    static HttpOptions options(HttpOptions result = TestServer::usualOptions())
    {
        result.certificateFile = s_certificate->certificateFile();
        result.privateKeyFile = s_certificate->keyFile();
        return result;
    }

    static std::string startFailure(const HttpOptions &options)
    {
        HttpServer server(options, TestServer::echo);
        try {
            server.start();
        } catch (const std::runtime_error &error) {
            return error.what();
        }
        return {};
    }

    static inline TestCertificate *s_certificate = nullptr;
};

TEST_F(HttpTlsTest, RequestsAreServedWithTls12And13AndTheEndIsClean)
{
    TestServer server(TestServer::echo, options());
    for (const auto &[versions, name] : {std::pair(tls12, "TLSv1.2"), std::pair(tls13, "TLSv1.3")}) {
        TlsClient client(server.port(), s_certificate->certificateFile(), versions);
        ASSERT_TRUE(client.connected());
        EXPECT_EQ(client.version(), name);
        ASSERT_TRUE(client.send(post("/a", "secret") + get("/b", "Connection: close\r\n")));
        bool clean = false;
        const std::string all = client.receiveAll(clean);
        EXPECT_TRUE(clean);
        EXPECT_EQ(all.find("HTTP/1.1 200 OK\r\n"), 0U);
        EXPECT_LT(all.find("path=/a\n"), all.find("path=/b\n"));
        EXPECT_NE(all.find("path=/b\n"), std::string::npos);
    }
}

TEST_F(HttpTlsTest, Tls12UsesOnlyForwardSecretAuthenticatedCiphers)
{
    TestServer server(TestServer::echo, options());
    TlsClient client(server.port(), s_certificate->certificateFile(), tls12);
    ASSERT_TRUE(client.connected());
    EXPECT_EQ(client.cipher().find("ECDHE-"), 0U) << client.cipher();
    EXPECT_TRUE(client.cipher().find("GCM") != std::string::npos ||
                client.cipher().find("CHACHA20") != std::string::npos)
        << client.cipher();
}

TEST_F(HttpTlsTest, OlderVersionsAreRefused)
{
    TestServer server(TestServer::echo, options());
    TlsClient old(server.port(), s_certificate->certificateFile(), {TLS1_VERSION, TLS1_1_VERSION});
    EXPECT_FALSE(old.connected());
    EXPECT_TRUE(TlsClient(server.port(), s_certificate->certificateFile(), tls12).connected());
}

TEST_F(HttpTlsTest, PlainHttpOnATlsPortGetsNoAnswer)
{
    TestServer server(TestServer::echo, options());
    RawClient client(server.port());
    client.send(get("/"));
    EXPECT_EQ(client.receiveAll().find("HTTP/"), std::string::npos);
    EXPECT_TRUE(TlsClient(server.port(), s_certificate->certificateFile(), tls13).connected());
}

TEST_F(HttpTlsTest, HandshakeThatDoesNotHappenIsTimedOut)
{
    TestServer server(TestServer::echo, options(TestServer::quickOptions()));
    const auto start = std::chrono::steady_clock::now();
    RawClient silent(server.port());
    EXPECT_TRUE(silent.closesWithin(RawClient::patience));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(390));
}

TEST_F(HttpTlsTest, HalfSentRequestIsTimedOutWithAnAnswer)
{
    HttpOptions hasty = options();
    hasty.requestDeadline = std::chrono::milliseconds(600);
    TestServer server(TestServer::echo, hasty);
    TlsClient client(server.port(), s_certificate->certificateFile(), tls13);
    client.send("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 10\r\n\r\nhalf");
    bool clean = false;
    EXPECT_EQ(client.receiveAll(clean).find("HTTP/1.1 408 Request Timeout\r\n"), 0U);
    EXPECT_TRUE(clean);
}

TEST_F(HttpTlsTest, LargeBodiesPassBothWays)
{
    const std::string body(900'000, 'x');
    HttpOptions large = options();
    large.bodyLimit = body.size();
    TestServer server([](const Request &request) { return Response{200, request.body, "a/b", {}}; }, large);
    TlsClient client(server.port(), s_certificate->certificateFile(), tls13);
    ASSERT_TRUE(client.send(post("/", body, "Connection: close\r\n")));
    bool clean = false;
    const std::string all = client.receiveAll(clean);
    EXPECT_TRUE(clean);
    ASSERT_GT(all.size(), body.size());
    EXPECT_TRUE(all.substr(all.size() - body.size()) == body);
}

TEST_F(HttpTlsTest, UnusableFilesAreToldInClearWords)
{
    HttpOptions broken = options();
    broken.certificateFile = "missing.pem";
    EXPECT_EQ(startFailure(broken).find("Cannot use the certificate file missing.pem: "), 0U)
        << startFailure(broken);
    broken = options();
    broken.privateKeyFile = broken.certificateFile;
    EXPECT_EQ(startFailure(broken).find("Cannot use the private key file "), 0U) << startFailure(broken);
    broken = options();
    broken.privateKeyFile.clear();
    EXPECT_EQ(startFailure(broken), "TLS needs both a certificate file and a private key file.");
    const TestCertificate other;
    broken = options();
    broken.privateKeyFile = other.keyFile();
    EXPECT_NE(startFailure(broken), "") << "the key of another certificate";
}

} // namespace clockwell::server
