#include "server/log/JsonLine.h"

#include "Contains.h"
#include "HttpClient.h"
#include "LogPipe.h"
#include "ServerProcess.h"
#include "World.h"
#include "http/RawClient.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace clockwell::server::test {

namespace {

nlohmann::json lineOf(std::string_view text)
{
    return nlohmann::json::parse(jsonLine(instantOf("2026-06-10T09:00:00.123Z"), "info", text));
}

/// The objects of all complete lines; throws when one is none.
std::vector<nlohmann::json> objectsIn(const std::string &log)
{
    std::vector<nlohmann::json> objects;
    std::istringstream lines{log.substr(0, log.rfind('\n') + 1)};
    for (std::string line; std::getline(lines, line);)
        objects.push_back(nlohmann::json::parse(line));
    return objects;
}

/// The requests of a log: those that it shows, and those whose lines it says were lost.
std::size_t requestsInJson(const std::string &log)
{
    constexpr std::string_view shown = R"("message":"request")";
    constexpr std::string_view lost = R"("message":"linesLost","count":)";
    std::size_t sum = 0;
    for (auto at = log.find(shown); at != std::string::npos; at = log.find(shown, at + 1))
        ++sum;
    for (auto at = log.find(lost); at != std::string::npos; at = log.find(lost, at + 1))
        if (log.find('\n', at) != std::string::npos)
            sum += std::stoul(log.substr(at + lost.size()));
    return sum;
}

} // namespace

TEST(JsonLineTest, PairsAreFields)
{
    EXPECT_EQ(jsonLine(instantOf("2026-06-10T09:00:00.123Z"), "info",
                       "event=request id=0a-1 path=/health status=200 durationMs=0.250 bytes=12"),
              R"({"time":"2026-06-10T09:00:00.123Z","level":"info","message":"request","id":"0a-1",)"
              R"("path":"/health","status":200,"durationMs":0.25,"bytes":12})");
}

TEST(JsonLineTest, OnlyWhatIsAlwaysANumberIsOne)
{
    const auto line = lineOf("event=punch employee=12345 id=1e5 status=-");
    EXPECT_EQ(line.at("employee"), "12345");
    EXPECT_EQ(line.at("id"), "1e5");
    EXPECT_EQ(line.at("status"), "-");
}

TEST(JsonLineTest, QuotedValues)
{
    EXPECT_EQ(lineOf(R"(event=a what="two words" next=1)").at("what"), "two words");
    EXPECT_EQ(lineOf(R"(event=a what="a \"b\" c\\" next=1)").at("what"), R"(a "b" c\)");
    EXPECT_EQ(lineOf(R"(event=a what="x \xE2 y")").at("what"), R"(x \xE2 y)");
    EXPECT_EQ(lineOf(R"(event=a what="" next="")").at("what"), "");
}

TEST(JsonLineTest, OtherTextsAreTheMessage)
{
    for (const char *text : {"", " ", "Hello", "event=a and more", "event=a what=\"never ends",
                             R"(event=a what="it said "no" to all")", "a=b", "event=a  b=c", "=", "=a",
                             "event=a \"=b", "time=1 level=x"}) {
        const auto line = lineOf(text);
        EXPECT_EQ(line.at("message"), text);
        EXPECT_EQ(line.size(), 3U) << text;
    }
}

TEST(JsonLineTest, FieldsDoNotReplaceTheLinesOwn)
{
    const auto line = lineOf("event=a time=never level=none message=b x=1 x=2");
    EXPECT_EQ(line.at("time"), "2026-06-10T09:00:00.123Z");
    EXPECT_EQ(line.at("level"), "info");
    EXPECT_EQ(line.at("message"), "a");
    EXPECT_EQ(line.at("x"), "1");
}

TEST(JsonLineTest, AnyBytesMakeOneLineOfAscii)
{
    std::mt19937 random{1};
    const std::string pieces = "event=a b=\"c\" \\ \n\r\t\x1b\x7f\xe2\x80\xae\xff\xc0\x80";
    for (int round = 0; round < 2000; ++round) {
        std::string text = "event=";
        for (int i = 0; i < 20; ++i)
            text += round % 2 == 0 ? pieces[random() % pieces.size()] : static_cast<char>(random() % 256);
        const std::string line = jsonLine({}, "warning", text);
        EXPECT_NO_THROW(nlohmann::json::parse(line)) << line;
        EXPECT_TRUE(std::ranges::all_of(line, [](char c) { return c >= ' ' && c < 0x7f; })) << line;
    }
    EXPECT_EQ(lineOf("a\xff\n").at("message"), "a\xEF\xBF\xBD\n");
}

TEST(JsonLogTest, EveryLineOfTheServerIsAnObject)
{
    const TempFolder folder;
    ServerProcess server{folder.file("a.db"), {"--log-format", "json"}};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(send(server.port(), "GET", "/health").status, 200);
    EXPECT_EQ(send(server.port(), "GET", "/%E2%80%AEtxt%0a").status, 400);
    EXPECT_EQ(RawClient{server.port()}.exchange("\xff\xfe\"\\ / HTTP/1.1\r\nHost: x\r\n\r\n").status, 400);
    EXPECT_EQ(server.terminate(), 0);
    const auto lines = objectsIn(server.log());
    const auto find = [&](const std::string &message) {
        return std::ranges::find_if(
            lines, [&](const nlohmann::json &line) { return line.at("message") == message; });
    };
    ASSERT_NE(find("listening"), lines.end());
    EXPECT_EQ(find("listening")->at("port"), server.port());
    ASSERT_NE(find("request"), lines.end());
    EXPECT_EQ(find("request")->at("status"), 200);
    EXPECT_EQ(find("request")->at("path"), "/health");
    EXPECT_EQ(find("request")->at("level"), "info");
    EXPECT_TRUE(find("request")->at("durationMs").is_number());
    EXPECT_NE(find("stopped"), lines.end());
    for (const auto &line : lines)
        EXPECT_EQ(line.at("time").get<std::string>().size(), 24U) << line;
}

TEST(JsonLogTest, PipeThatNobodyReadsCostsLinesAndNoRequest)
{
    constexpr std::size_t requests = 12'000; // more than wait in the pipe and in the server
    const TempFolder folder;
    LogPipe pipe;
    ServerProcess server{folder.file("a.db"), {"--log-format", "json"}, pipe.path()};
    ASSERT_NE(server.port(), 0);
    RawClient client{server.port()};
    for (std::size_t i = 0; i < requests; ++i)
        ASSERT_EQ(client.exchange(get("/health")).status, 200) << i;
    ASSERT_EQ(client.exchange(get("/api/auth/me")).status, 401); // the newest line is never lost
    const std::string &log = pipe.readUntil([](const std::string &text) {
        constexpr std::size_t tail = 200'000;
        const auto last = text.find("/api/auth/me", text.size() > tail ? text.size() - tail : 0);
        return text.find('\n', last) != std::string::npos;
    });
    EXPECT_TRUE(contains(log, R"("message":"linesLost")"));
    EXPECT_EQ(requestsInJson(log), requests + 1);
    EXPECT_GT(objectsIn(log).size(), 8000U) << "each of its lines is whole";
    EXPECT_EQ(server.terminate(), 0);
}

TEST(JsonLogTest, OtherFormatIsWrongUsage)
{
    const TempFolder folder;
    EXPECT_EQ(runServer({"serve", "--database", folder.file("a.db"), "--log-format", "xml"}).exitCode, 2);
}

} // namespace clockwell::server::test
