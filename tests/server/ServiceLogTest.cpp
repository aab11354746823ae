#include "Contains.h"
#include "HttpClient.h"
#include "LogPipe.h"
#include "ServerProcess.h"
#include "TestDatabase.h"
#include "http/RawClient.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace clockwell::server::test {

namespace {

std::size_t occurrences(const std::string &text, const std::string &part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

/// The sum of the counts in the lines of an event, which end with them.
std::size_t sumOfCounts(const std::string &log, const std::string &event)
{
    const std::string begin = "event=" + event + " ";
    const std::string key = " count=";
    std::size_t sum = 0;
    for (std::size_t at = log.find(begin); at != std::string::npos; at = log.find(begin, at + 1)) {
        const std::size_t end = log.find('\n', at);
        const std::size_t count = log.rfind(key, end);
        if (end != std::string::npos && count != std::string::npos && count > at)
            sum += std::stoul(log.substr(count + key.size()));
    }
    return sum;
}

/// The requests of a log: those that it shows, and those whose lines it says were lost.
std::size_t requestsSaid(const std::string &log)
{
    return occurrences(log, "event=request ") + sumOfCounts(log, "linesLost");
}

bool saysThatItListens(const std::string &log)
{
    return std::regex_search(log, std::regex{"event=listening[^\n]*\n"});
}

} // namespace

class ServiceLogTest : public testing::Test
{
protected:
    /// The statuses that were not 200, of so many requests over one connection.
    static int refusals(std::uint16_t port, int requests, const std::string &target = "/health")
    {
        RawClient client{port};
        int count = 0;
        for (int i = 0; i < requests; ++i)
            count += client.exchange(get(target)).status == 200 ? 0 : 1;
        return count;
    }

    TempFolder folder;
    LogPipe pipe;
    ServerProcess server{databaseIn(folder), {}, pipe.path()};
};

TEST_F(ServiceLogTest, ReaderThatGoesAwayCostsLinesAndNoRequest)
{
    ASSERT_TRUE(saysThatItListens(pipe.readUntil(saysThatItListens)));
    pipe.close();
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(send(server.port(), "GET", "/health").status, 200) << i;
    pipe.open();
    ASSERT_EQ(send(server.port(), "GET", "/health").status, 200);
    const std::string &log = pipe.readUntil([](const std::string &text) { return requestsSaid(text) >= 21; });
    EXPECT_GT(sumOfCounts(log, "linesLost"), 0U) << log;
    EXPECT_EQ(requestsSaid(log), 21U) << log;
    EXPECT_EQ(server.terminate(), 0);
}

TEST_F(ServiceLogTest, PipeThatNobodyReadsCostsLinesAndNoRequest)
{
    constexpr int requests = 12'000; // more than wait in the pipe and in the server
    RawClient client{server.port()};
    for (int i = 0; i < requests; ++i)
        ASSERT_EQ(client.exchange(get("/health")).status, 200) << i;
    const std::string &log =
        pipe.readUntil([](const std::string &text) { return requestsSaid(text) >= requests; });
    EXPECT_GT(sumOfCounts(log, "linesLost"), 0U);
    EXPECT_EQ(requestsSaid(log), static_cast<std::size_t>(requests));
    EXPECT_EQ(server.terminate(), 0);
}

TEST_F(ServiceLogTest, PipeThatNobodyReadsDoesNotHoldTheEnd)
{
    RawClient client{server.port()};
    for (int i = 0; i < 200; ++i) // about 20,000 bytes
        ASSERT_EQ(client.exchange(get("/health")).status, 200) << i;
    EXPECT_EQ(server.terminate(), 0);
}

TEST(LoggedRequestsTest, RefusalsAreSummedUpAfterTheFirstFew)
{
    const TempFolder folder;
    ServerProcess server{databaseIn(folder)};
    RawClient client{server.port()};
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(client.exchange(get("/nowhere/" + std::to_string(i))).status, 404);
    ASSERT_EQ(client.exchange(get("/health")).status, 200);
    EXPECT_EQ(server.terminate(), 0);
    const std::string log = server.log();
    const std::size_t shown = occurrences(log, "event=request ");
    EXPECT_GE(shown, 2U);
    EXPECT_LE(shown, 50U); // what is summed up starts anew each minute
    EXPECT_EQ(shown + sumOfCounts(log, "repeated"), 1001U) << log;
}

TEST(LoggedRequestsTest, NoAddressTokenOrMarkOfAPathIsLogged)
{
    const TempFolder folder;
    ServerProcess server{databaseIn(folder)};
    const auto refused = [&](const std::string &request) {
        return RawClient{server.port()}.exchange(request).status;
    };
    for (const char *path : {"/api/attendance/eyJhbGciOiJIUzI1NiJ9", "/reset/kim@example.org",
                             "/api/auth/me/kim%40example.org", "/%E2%80%AEtxt", "/%C2%9B31mred",
                             "/%E2%80%8Bzero", "/health/kim@example.org?email=kim@example.org"})
        EXPECT_EQ(refused(get(path)), 404) << path;
    EXPECT_EQ(refused("GETeyJhbGciOiJ /health HTTP/1.1\r\nHost: x\r\n\r\n"), 404);
    EXPECT_EQ(refused(get("/api/auth/me?token=eyJhbGciOiJIUzI1NiJ9")), 401);
    EXPECT_EQ(server.terminate(), 0);
    const std::string log = server.log();
    EXPECT_TRUE(contains(log, "path=/api/auth/me status=401")) << log;
    EXPECT_TRUE(contains(log, "path=other status=404")) << log;
    for (const char *secret : {"eyJ", "kim", "example", "zero", "31m", "txt", "\xE2\x80", "\xC2"})
        EXPECT_FALSE(contains(log, secret)) << secret << "\n" << log;
}

} // namespace clockwell::server::test
