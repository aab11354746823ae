#include "server/http/ResponseText.h"

#include "server/http/AccessLog.h"
#include "server/http/Refusal.h"

#include <gtest/gtest.h>

namespace clockwell::server {

TEST(ResponseTextTest, CarriesTheFixedHeadersAndNoServerName)
{
    EXPECT_EQ(
        responseText({200, "{}", "application/json", {}}, {true, false, false}, 0),
        "HTTP/1.1 200 OK\r\nDate: Thu, 01 Jan 1970 00:00:00 GMT\r\nCache-Control: no-store\r\n"
        "X-Content-Type-Options: nosniff\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}");
}

TEST(ResponseTextTest, NoContentHasNeitherBodyNorLength)
{
    const std::string text = responseText({204, "ignored", "application/json", {}}, {true, false, false}, 0);
    EXPECT_EQ(text.find("Content-"), text.find("Content-Type-Options"));
    EXPECT_EQ(text.substr(text.size() - 4), "\r\n\r\n");
}

TEST(ResponseTextTest, AnswerToHeadHasTheLengthButNoBody)
{
    const std::string text = responseText({200, "12345", "text/plain", {}}, {true, false, true}, 0);
    EXPECT_NE(text.find("Content-Length: 5\r\n"), text.npos);
    EXPECT_EQ(text.substr(text.size() - 4), "\r\n\r\n");
}

TEST(ResponseTextTest, ConnectionHeaderSaysWhatDiffersFromTheVersionsDefault)
{
    const auto text = [](bool keepAlive, bool http10) {
        return responseText({200, {}, "a/b", {}}, {keepAlive, http10, false}, 0);
    };
    EXPECT_EQ(text(true, false).find("Connection"), std::string::npos);
    EXPECT_NE(text(false, false).find("Connection: close\r\n"), std::string::npos);
    EXPECT_NE(text(false, true).find("Connection: close\r\n"), std::string::npos);
    EXPECT_NE(text(true, true).find("Connection: keep-alive\r\n"), std::string::npos);
}

TEST(ResponseTextTest, DateIsInEnglishAndGreenwichWhateverTheLocale)
{
    EXPECT_EQ(httpDate(1'794'996'000), "Wed, 18 Nov 2026 10:00:00 GMT");
    EXPECT_EQ(httpDate(784'111'777), "Sun, 06 Nov 1994 08:49:37 GMT");
}

TEST(ResponseTextTest, HeadersThatWouldBreakTheFramingAreNotSent)
{
    const auto with = [](const char *name, const char *value) {
        return responseText({200, {}, "a/b", {{name, value}}}, {}, 0);
    };
    EXPECT_NO_THROW(with("Retry-After", "5"));
    EXPECT_THROW(with("X", "a\r\nSet-Cookie: b"), std::invalid_argument);
    EXPECT_THROW(with("X\r\nY", "a"), std::invalid_argument);
    EXPECT_THROW(with("", "a"), std::invalid_argument);
    EXPECT_THROW(with("content-length", "3"), std::invalid_argument);
    EXPECT_THROW(with("Transfer-Encoding", "chunked"), std::invalid_argument);
}

TEST(ResponseTextTest, StatusesThatAreNotFinalAreNotSent)
{
    for (const int status : {0, 100, 199, 600, -1})
        EXPECT_THROW(responseText({status, {}, "a/b", {}}, {}, 0), std::invalid_argument) << status;
}

TEST(RefusalTest, BodyHasTheFormOfTheApisErrors)
{
    EXPECT_EQ(toResponse(refusals::internal).body,
              R"({"statusCode":500,"error":"INTERNAL","message":"Something went wrong on the server."})");
    EXPECT_EQ(toResponse(refusals::badRequest).body,
              R"({"statusCode":400,"error":"BAD_REQUEST","message":"The request is malformed."})");
}

TEST(RefusalTest, RetryAfterIsAtLeastASecond)
{
    const Response response = toResponse(refusals::busy, 0);
    ASSERT_EQ(response.headers.size(), 1U);
    EXPECT_EQ(response.headers[0], std::pair(std::string("Retry-After"), std::string("1")));
}

TEST(AccessLogTest, ValuesStayOneValueInALine)
{
    EXPECT_EQ(logValue("/api/auth/me", 50), "/api/auth/me");
    EXPECT_EQ(logValue("a b", 50), "\"a b\"");
    EXPECT_EQ(logValue("a\" status=200", 50), "\"a\\\" status=200\"");
    EXPECT_EQ(logValue("a\nb", 50), "\"a?b\"");
    EXPECT_EQ(logValue("", 50), "\"\"");
    EXPECT_EQ(logValue("a\xE2\x80\xAE|\xC2\x9B", 50), "a\\xE2\\x80\\xAE|\\xC2\\x9B");
    EXPECT_EQ(logValue("abcdef", 3), "abc...");
}

TEST(AccessLogTest, RequestIdsDiffer)
{
    RequestIds ids;
    RequestIds others;
    EXPECT_NE(ids.next(), ids.next());
    EXPECT_NE(ids.next(), others.next());
}

} // namespace clockwell::server
