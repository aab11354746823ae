#include "TestServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace clockwell::server {

namespace {

void expectError(const RawResponse &response, int status, const std::string &code)
{
    EXPECT_EQ(response.status, status);
    EXPECT_EQ(response.headers.count("content-type") ? response.headers.at("content-type") : "",
              "application/json");
    EXPECT_EQ(response.body.find("{\"statusCode\":" + std::to_string(status) + ",\"error\":\"" + code +
                                 "\",\"message\":\""),
              0U)
        << response.body;
}

} // namespace

TEST(HttpLimitsTest, BodyOverTheLimitIsRefusedByItsLengthAndTheConnectionClosed)
{
    TestServer server;
    RawClient client(server.port());
    expectError(client.exchange("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 16385\r\n\r\n"), 413,
                "PAYLOAD_TOO_LARGE");
    EXPECT_TRUE(client.closesWithin(RawClient::patience));
}

TEST(HttpLimitsTest, ClientThatGoesOnSendingATooLargeBodyStillReadsTheRefusal)
{
    TestServer server;
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 3000000\r\n\r\n");
    client.send(std::string(3'000'000, 'b'));
    expectError(client.receive(), 413, "PAYLOAD_TOO_LARGE");
}

TEST(HttpLimitsTest, ChunkedBodyOverTheLimitIsRefused)
{
    TestServer server;
    RawClient client(server.port());
    client.send("POST / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n");
    const std::string chunk = "1000\r\n" + std::string(0x1000, 'b') + "\r\n";
    for (int i = 0; i < 5; ++i)
        client.send(chunk);
    expectError(client.receive(), 413, "PAYLOAD_TOO_LARGE");
}

TEST(HttpLimitsTest, HeaderOverTheLimitIsRefused)
{
    TestServer server;
    expectError(RawClient(server.port()).exchange(get("/", "X: " + std::string(17'000, 'a') + "\r\n")), 431,
                "HEADER_TOO_LARGE");
    expectError(RawClient(server.port()).exchange(get("/" + std::string(17'000, 'a'))), 431,
                "HEADER_TOO_LARGE");
}

TEST(HttpLimitsTest, HeaderLimitHoldsForEachRequestOfAConnection)
{
    TestServer server;
    RawClient client(server.port());
    const std::string large = get("/", "X: " + std::string(15'000, 'a') + "\r\n");
    client.send(large + large + large);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client.receive().status, 200);
}

TEST(HttpLimitsTest, FloodOfConnectionsIsClosedAndTheServerLives)
{
    HttpOptions options = TestServer::usualOptions();
    options.maxConnections = 2;
    TestServer server(TestServer::echo, options);
    {
        std::vector<std::unique_ptr<RawClient>> flood;
        for (int i = 0; i < 200; ++i)
            flood.push_back(std::make_unique<RawClient>(server.port()));
    }
    EXPECT_TRUE(eventually([&server] { return RawClient(server.port()).exchange(get("/")).status == 200; }));
}

namespace {

/// A server that answers "/missing" with 404, and lets an address fail so many times.
HttpOptions failures(unsigned burst)
{
    HttpOptions options = TestServer::usualOptions();
    options.failuresPerMinute = 20;
    options.failureBurst = burst;
    return options;
}

Response knowingItsPaths(const Request &request)
{
    Response response = TestServer::echo(request);
    response.status = request.path.ends_with("missing") ? 404 : 200;
    return response;
}

} // namespace

TEST(HttpLimitsTest, AddressThatFailsTooOftenIsToldWhenToComeBack)
{
    TestServer server(knowingItsPaths, failures(5), TestServer::byPath());
    RawClient client(server.port());
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(client.exchange(get("/missing")).status, 404);
    const auto response = client.exchange(get("/missing"));
    expectError(response, 429, "TOO_MANY_REQUESTS");
    EXPECT_EQ(response.headers.at("retry-after"), "3");
    EXPECT_EQ(response.headers.count("connection"), 0U) << "without a body the connection can go on";
    EXPECT_EQ(RawClient(server.port()).exchange(get("/")).status, 429)
        << "it counts addresses, not connections";
    EXPECT_EQ(RawClient(server.port(), 0, "127.0.0.9").exchange(get("/")).status, 200);
    EXPECT_EQ(client.exchange(get("/health")).status, 200) << "the health check is not counted";
}

TEST(HttpLimitsTest, FailuresOfAnAddressKeepNobodyAwayWhoIsSignedInOrRenewsOrSignsIn)
{
    TestServer server(knowingItsPaths, failures(1), TestServer::byPath());
    RawClient client(server.port());
    ASSERT_EQ(client.exchange(get("/missing")).status, 404);
    ASSERT_EQ(client.exchange(get("/")).status, 429);
    EXPECT_EQ(client.exchange(get("/", "Authorization: Bearer abc\r\n")).status, 200);
    EXPECT_EQ(client.exchange(get("/renewal")).status, 200);
    EXPECT_EQ(client.exchange(get("/password")).status, 200) << "its lane has limits of its own";
}

TEST(HttpLimitsTest, NeitherGoodRequestsNorFailuresWithATokenAreCounted)
{
    TestServer server(knowingItsPaths, failures(1), TestServer::byPath());
    RawClient client(server.port());
    for (int i = 0; i < 500; ++i) {
        ASSERT_EQ(client.exchange(get("/")).status, 200);
        ASSERT_EQ(client.exchange(get("/missing", "Authorization: Bearer expired\r\n")).status, 404);
        ASSERT_EQ(client.exchange(post("/renewal/missing", "")).status, 404);
        ASSERT_EQ(client.exchange(post("/password/missing", "")).status, 404);
    }
}

TEST(HttpLimitsTest, MalformedRequestsAreCounted)
{
    TestServer server(knowingItsPaths, failures(2), TestServer::byPath());
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(RawClient(server.port()).exchange("GET / HTTP/1.1\r\n\r\n").status, 400);
    EXPECT_EQ(RawClient(server.port()).exchange(get("/")).status, 429);
}

TEST(HttpLimitsTest, ThrottledRequestWithABodyEndsTheConnection)
{
    TestServer server(knowingItsPaths, failures(1), TestServer::byPath());
    RawClient client(server.port());
    client.exchange(get("/missing"));
    const auto response = client.exchange(post("/", get("/smuggled")));
    expectError(response, 429, "TOO_MANY_REQUESTS");
    EXPECT_EQ(response.headers.at("connection"), "close");
    EXPECT_TRUE(client.closesWithin(RawClient::patience));
}

TEST(HttpLimitsTest, HandlersExceptionBecomesAGeneralAnswerAndTheConnectionGoesOn)
{
    TestServer server([](const Request &request) -> Response {
        if (request.path == "/std")
            throw std::runtime_error("SELECT password FROM employee");
        if (request.path == "/other")
            throw 42;
        return TestServer::echo(request);
    });
    RawClient client(server.port());
    for (const char *path : {"/std", "/other"}) {
        const auto response = client.exchange(get(path));
        EXPECT_EQ(response.status, 500);
        EXPECT_EQ(response.body,
                  R"({"statusCode":500,"error":"INTERNAL","message":"Something went wrong on the server."})");
    }
    EXPECT_EQ(client.exchange(get("/")).status, 200);
    const std::string log = server.log();
    EXPECT_NE(log.find("what=\"SELECT password FROM employee\""), std::string::npos);
    EXPECT_NE(log.find("what=\"unknown exception\""), std::string::npos);
}

TEST(HttpLimitsTest, AnswerThatCannotBeSentBecomesTheGeneralOne)
{
    TestServer server([](const Request &request) -> Response {
        if (request.path == "/split")
            return {200, "{}", "application/json", {{"X", "a\r\nSet-Cookie: stolen"}}};
        return {99, "{}", "application/json", {}};
    });
    RawClient client(server.port());
    EXPECT_EQ(client.exchange(get("/split")).status, 500);
    EXPECT_EQ(client.exchange(get("/status")).status, 500);
    EXPECT_NE(server.log().find("path=/split status=500"), std::string::npos) << "the log has what was sent";
}

} // namespace clockwell::server
