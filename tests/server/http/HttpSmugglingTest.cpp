#include "TestServer.h"

#include <gtest/gtest.h>

namespace clockwell::server {

/// Each of these hides a second request in what another implementation would take for the first one's body or
/// header. The second must never be answered, and the connection must end.
class SmuggledRequestTest : public testing::TestWithParam<std::string>
{};

TEST_P(SmuggledRequestTest, IsOneBadRequestAndTheEnd)
{
    TestServer server;
    std::string all;
    {
        RawClient client(server.port());
        client.send(GetParam() + get("/smuggled"));
        all = client.receiveAll();
    }
    EXPECT_EQ(all.find("HTTP/1.1 400 Bad Request\r\n"), 0U) << all;
    EXPECT_EQ(all.find("HTTP/1.1", 1), std::string::npos) << "one answer only: " << all;
    EXPECT_NE(all.find("Connection: close\r\n"), std::string::npos);
    EXPECT_NE(all.find(R"({"statusCode":400,"error":"BAD_REQUEST","message":")"), std::string::npos);
    EXPECT_EQ(server.log().find("/smuggled"), std::string::npos);
}

namespace {
std::string smuggling(const std::string &fields, const std::string &body = {})
{
    return "POST /a HTTP/1.1\r\nHost: x\r\n" + fields + "\r\n" + body;
}
} // namespace

INSTANTIATE_TEST_SUITE_P(
    Requests, SmuggledRequestTest,
    testing::Values(smuggling("Content-Length: 5\r\nTransfer-Encoding: chunked\r\n", "0\r\n\r\n"),
                    smuggling("Transfer-Encoding: chunked\r\nContent-Length: 5\r\n", "0\r\n\r\n"),
                    smuggling("Content-Length: 0\r\nContent-Length: 44\r\n"),
                    smuggling("Content-Length: 0\r\nContent-Length: 0\r\n"),
                    smuggling("Content-Length: 0, 44\r\n"), smuggling("Content-Length: +0\r\n"),
                    smuggling("X: a\r\n Content-Length: 44\r\n"), smuggling("Content-Length : 44\r\n"),
                    smuggling("X: a\nContent-Length: 44\r\n"), smuggling("X: a\rContent-Length: 44\r\n"),
                    smuggling(std::string("X: a\0Content-Length: 44\r\n", 25)),
                    smuggling("Transfer-Encoding : chunked\r\n"),
                    smuggling("Transfer-Encoding:\x0b"
                              "chunked\r\n"),
                    smuggling("Transfer-Encoding: chunked\r\n", "0x0\r\n\r\n"),
                    smuggling("Transfer-Encoding: chunked\r\n", "0\n\n"),
                    smuggling("Transfer-Encoding: chunked\r\n", "2\r\nabc\r\n0\r\n\r\n"),
                    smuggling("Transfer-Encoding: chunked\r\n", "10000000000000000\r\n"),
                    "GET http://other/ HTTP/1.1\r\nHost: x\r\n\r\n", "GET /%2 HTTP/1.1\r\nHost: x\r\n\r\n",
                    "GET /%c0%af HTTP/1.1\r\nHost: x\r\n\r\n", "GET /?q=%ff HTTP/1.1\r\nHost: x\r\n\r\n"));

TEST(HttpSmugglingTest, BareLineFeedsAreRefusedAtOnceNotAtTheDeadline)
{
    HttpOptions options = TestServer::usualOptions();
    options.headDeadline = std::chrono::seconds(30);
    TestServer server(TestServer::echo, options);
    EXPECT_EQ(RawClient(server.port()).exchange("GET / HTTP/1.1\nHost: x\n\n").status, 400);
}

TEST(HttpSmugglingTest, ARequestInAProperBodyIsJustABody)
{
    TestServer server;
    RawClient client(server.port());
    client.send(post("/outer", get("/inner")) + get("/next"));
    EXPECT_NE(client.receive().body.find("path=/outer\n"), std::string::npos);
    EXPECT_NE(client.receive().body.find("path=/next\n"), std::string::npos);
}

} // namespace clockwell::server
