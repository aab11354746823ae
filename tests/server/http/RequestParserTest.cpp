#include "server/http/RequestParser.h"

#include "RawClient.h"
#include "server/http/HttpOptions.h"

#include <gtest/gtest.h>

namespace clockwell::server {

namespace {

/// Feeds `bytes` in pieces of `step` as a connection would, keeping what was not used; returns the rest.
std::string feedInSteps(RequestParser &parser, std::string_view bytes, std::size_t step)
{
    std::string buffer;
    while (!bytes.empty() && !parser.refusal() && !parser.complete()) {
        buffer += bytes.substr(0, step);
        bytes.remove_prefix(std::min(step, bytes.size()));
        for (std::size_t used = 1; used > 0 && !buffer.empty();) {
            used = parser.feed(buffer);
            buffer.erase(0, used);
        }
    }
    return buffer + std::string(bytes);
}

int refusedWith(const std::string &bytes, HttpOptions options = {})
{
    RequestParser parser(options);
    feedInSteps(parser, bytes, bytes.size());
    return parser.refusal() ? parser.refusal()->status : 0;
}

std::string head(const std::string &fields)
{
    return "POST /a HTTP/1.1\r\nHost: x\r\n" + fields + "\r\n";
}

} // namespace

class RequestParserStepTest : public testing::TestWithParam<std::size_t>
{};

TEST_P(RequestParserStepTest, SameRequestWhateverTheBytesComeIn)
{
    const HttpOptions options;
    RequestParser parser(options);
    const std::string bytes = "POST /api/a?b=%31 HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer t\r\n"
                              "Content-Type: application/json\r\nContent-Length: 7\r\n\r\n{\"a\":1}NEXT";
    const std::string rest = feedInSteps(parser, bytes, GetParam());
    ASSERT_TRUE(parser.complete());
    EXPECT_EQ(rest, "NEXT");
    const Request request = parser.takeRequest();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/api/a");
    EXPECT_EQ(request.query.find("b")->second, "1");
    EXPECT_EQ(request.authorization, "Bearer t");
    EXPECT_EQ(request.contentType, "application/json");
    EXPECT_EQ(request.body, R"({"a":1})");
    EXPECT_TRUE(parser.keepAlive());
}

TEST_P(RequestParserStepTest, ChunkedBodyIsJoinedAndItsTrailersIgnored)
{
    const HttpOptions options;
    RequestParser parser(options);
    const std::string bytes =
        head("Transfer-Encoding: chunked\r\n") +
        "3;note=x\r\nabc\r\nA\r\n0123456789\r\n0\r\nAuthorization: Bearer forged\r\n\r\nNEXT";
    const std::string rest = feedInSteps(parser, bytes, GetParam());
    ASSERT_TRUE(parser.complete());
    EXPECT_EQ(rest, "NEXT");
    const Request request = parser.takeRequest();
    EXPECT_EQ(request.body, "abc0123456789");
    EXPECT_EQ(request.authorization, "");
}

INSTANTIATE_TEST_SUITE_P(Sizes, RequestParserStepTest, testing::Values(1, 2, 3, 7, 100, 10'000));

TEST(RequestParserTest, OneEmptyLineBeforeARequestIsForgivenAndTwoAreNot)
{
    EXPECT_EQ(refusedWith("\r\n" + get("/")), 0);
    EXPECT_EQ(refusedWith("\r\n\r\n" + get("/")), 400);
}

TEST(RequestParserTest, HeadIsHandedOnAsGet)
{
    const HttpOptions options;
    RequestParser parser(options);
    feedInSteps(parser, "HEAD /a HTTP/1.1\r\nHost: x\r\n\r\n", 1000);
    ASSERT_TRUE(parser.complete());
    EXPECT_TRUE(parser.isHead());
    EXPECT_EQ(parser.methodAsSent(), "HEAD");
    EXPECT_EQ(parser.takeRequest().method, "GET");
}

TEST(RequestParserTest, KeepAliveFollowsVersionAndConnectionHeader)
{
    const auto keepsAlive = [](const std::string &bytes) {
        const HttpOptions options;
        RequestParser parser(options);
        feedInSteps(parser, bytes, bytes.size());
        EXPECT_TRUE(parser.complete());
        return parser.keepAlive();
    };
    EXPECT_TRUE(keepsAlive(get("/")));
    EXPECT_FALSE(keepsAlive(get("/", "Connection: close\r\n")));
    EXPECT_FALSE(keepsAlive("GET / HTTP/1.0\r\n\r\n"));
    EXPECT_TRUE(keepsAlive("GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n"));
}

TEST(RequestParserTest, HeaderOfExactlyTheLimitPassesAndOneByteMoreIsRefused)
{
    HttpOptions options;
    options.headerLimit = 1000;
    const std::string frame = get("/", "X: \r\n");
    const auto ofSize = [&frame](std::size_t size) {
        return get("/", "X: " + std::string(size - frame.size(), 'a') + "\r\n");
    };
    ASSERT_EQ(ofSize(1000).size(), 1000U);
    EXPECT_EQ(refusedWith(ofSize(1000), options), 0);
    EXPECT_EQ(refusedWith(ofSize(1001), options), 431);
}

TEST(RequestParserTest, BodyOfExactlyTheLimitPassesAndOneByteMoreIsRefused)
{
    HttpOptions options;
    options.bodyLimit = 100;
    EXPECT_EQ(refusedWith(post("/", std::string(100, 'b')), options), 0);
    EXPECT_EQ(refusedWith(post("/", std::string(101, 'b')), options), 413);
    const std::string chunked = head("Transfer-Encoding: chunked\r\n");
    EXPECT_EQ(refusedWith(chunked + "64\r\n" + std::string(100, 'b') + "\r\n0\r\n\r\n", options), 0);
    EXPECT_EQ(refusedWith(chunked + "64\r\n" + std::string(100, 'b') + "\r\n1\r\nb\r\n0\r\n\r\n", options),
              413);
    EXPECT_EQ(refusedWith(chunked + "65\r\n", options), 413);
}

TEST(RequestParserTest, ContentLengthIsRefusedByItsNumberBeforeAnyByteOfTheBody)
{
    EXPECT_EQ(refusedWith(head("Content-Length: 1048577\r\n")), 413);
    EXPECT_EQ(refusedWith(head("Content-Length: 18446744073709551615\r\n")), 413);
    EXPECT_EQ(refusedWith(head("Content-Length: 18446744073709551616\r\n")), 400);
    EXPECT_EQ(refusedWith(head("Content-Length: 99999999999999999999999\r\n")), 400);
}

TEST(RequestParserTest, EndlessChunkExtensionIsRefused)
{
    EXPECT_EQ(refusedWith(head("Transfer-Encoding: chunked\r\n") + "1;" + std::string(20'000, 'x')), 400);
}

TEST(RequestParserTest, EndlessTrailerIsRefused)
{
    EXPECT_EQ(refusedWith(head("Transfer-Encoding: chunked\r\n") + "0\r\nX: " + std::string(20'000, 'x')),
              400);
}

TEST(RequestParserTest, OtherVersionsAreNamedAsSuch)
{
    EXPECT_EQ(refusedWith("GET / HTTP/2.0\r\nHost: x\r\n\r\n"), 505);
    EXPECT_EQ(refusedWith("GET / HTTP/1.2\r\nHost: x\r\n\r\n"), 505);
    EXPECT_EQ(refusedWith("GET / HTTP/11\r\nHost: x\r\n\r\n"), 400);
    EXPECT_EQ(refusedWith("GET / http/1.1\r\nHost: x\r\n\r\n"), 400);
    EXPECT_EQ(refusedWith("GET /\r\n\r\n"), 400);
}

TEST(RequestParserTest, UnknownTransferCodingIsNotImplemented)
{
    EXPECT_EQ(refusedWith(head("Transfer-Encoding: gzip\r\n")), 501);
    EXPECT_EQ(refusedWith(head("Transfer-Encoding: gzip, chunked\r\n")), 501);
}

TEST(RequestParserTest, OnlyTheContinueExpectationIsKnown)
{
    EXPECT_EQ(refusedWith(head("Content-Length: 1\r\nExpect: 100-continue\r\n")), 0);
    EXPECT_EQ(refusedWith(head("Content-Length: 1\r\nExpect: miracles\r\n")), 417);
}

class MalformedRequestTest : public testing::TestWithParam<std::string>
{};

TEST_P(MalformedRequestTest, IsABadRequest)
{
    EXPECT_EQ(refusedWith(GetParam()), 400);
}

INSTANTIATE_TEST_SUITE_P(
    Framing, MalformedRequestTest,
    testing::Values(head("Content-Length: 5\r\nTransfer-Encoding: chunked\r\n"),
                    head("Transfer-Encoding: chunked\r\nContent-Length: 5\r\n"),
                    head("Content-Length: 5\r\nContent-Length: 5\r\n"),
                    head("Content-Length: 5\r\nContent-Length: 6\r\n"), head("Content-Length: 5, 5\r\n"),
                    head("Content-Length: +5\r\n"), head("Content-Length: -5\r\n"),
                    head("Content-Length: 0x5\r\n"), head("Content-Length: \r\n"),
                    head("Content-Length: 5 5\r\n"),
                    head("Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n"),
                    head("Transfer-Encoding: chunked\r\nTransfer-Encoding: identity\r\n"),
                    "POST / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"));
INSTANTIATE_TEST_SUITE_P(
    Lines, MalformedRequestTest,
    testing::Values("GET / HTTP/1.1\nHost: x\n\n", "GET / HTTP/1.1\r\nHost: x\n\r\n",
                    "GET / HTTP/1.1\r\nHost: x\n", "GET / HTTP/1.1\r\nHost: x\rY: z\r\n\r\n",
                    head("A: b\r\n c\r\n"), head("A: b\r\n\tc\r\n"), "GET / HTTP/1.1\r\n Host: x\r\n\r\n",
                    head("Content-Length : 5\r\n"), head("A\t: 5\r\n"), head("NoColon\r\n"),
                    head(": nameless\r\n"), head("A(b): c\r\n"), head(std::string("A: b\0c\r\n", 8)),
                    head(std::string("A\0: c\r\n", 7)), head("A: b\x01\r\n"), head("A: b\x7F\r\n"),
                    " GET / HTTP/1.1\r\nHost: x\r\n\r\n", "GET  / HTTP/1.1\r\nHost: x\r\n\r\n",
                    "GET /  HTTP/1.1\r\nHost: x\r\n\r\n", "GET\t/ HTTP/1.1\r\nHost: x\r\n\r\n",
                    "GET / HTTP/1.1 \r\nHost: x\r\n\r\n", "G(T / HTTP/1.1\r\nHost: x\r\n\r\n"));
INSTANTIATE_TEST_SUITE_P(Chunks, MalformedRequestTest,
                         testing::Values(head("Transfer-Encoding: chunked\r\n") + "x\r\n",
                                         head("Transfer-Encoding: chunked\r\n") + "-1\r\n",
                                         head("Transfer-Encoding: chunked\r\n") + "0x5\r\nabcde\r\n0\r\n\r\n",
                                         head("Transfer-Encoding: chunked\r\n") + " 5\r\nabcde\r\n0\r\n\r\n",
                                         head("Transfer-Encoding: chunked\r\n") + "5 \r\nabcde\r\n0\r\n\r\n",
                                         head("Transfer-Encoding: chunked\r\n") + "5\nabcde\r\n0\r\n\r\n",
                                         head("Transfer-Encoding: chunked\r\n") + "3\r\nabcde\r\n0\r\n\r\n",
                                         head("Transfer-Encoding: chunked\r\n") + "\r\nabcde\r\n0\r\n\r\n",
                                         head("Transfer-Encoding: chunked\r\n") +
                                             "fffffffffffffffff\r\na\r\n0\r\n\r\n"));
INSTANTIATE_TEST_SUITE_P(Fields, MalformedRequestTest,
                         testing::Values("GET / HTTP/1.1\r\n\r\n",
                                         "GET / HTTP/1.1\r\nHost: a\r\nHost: b\r\n\r\n",
                                         head("Authorization: Bearer a\r\nAuthorization: Bearer b\r\n"),
                                         head("Content-Type: a\r\nContent-Type: b\r\n"),
                                         get("http://localhost/"), get("/%zz"), get("/%ff"), get("/?a=%ff"),
                                         get("*"), "CONNECT localhost:80 HTTP/1.1\r\nHost: x\r\n\r\n"));

} // namespace clockwell::server
