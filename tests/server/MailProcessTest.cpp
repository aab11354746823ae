#include "HttpClient.h"
#include "ServerProcess.h"
#include "SmtpServer.h"
#include "TestDatabase.h"
#include "Within.h"

#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <thread>

namespace clockwell::server::test {

namespace {

/// Signs so many people up; how many were promised a code.
int signUpMany(std::uint16_t port, int count)
{
    int promised = 0;
    for (int i = 0; i < count; ++i) {
        const nlohmann::json body{{"fullName", "Kim Sample"},
                                  {"email", "p" + std::to_string(i) + "@example.org"},
                                  {"password", "Correct-Horse-7"},
                                  {"deviceId", "dev-1"}};
        promised += send(port, "POST", "/api/auth/signup", "", body.dump()).status == 201 ? 1 : 0;
    }
    return promised;
}

} // namespace

TEST(MailProcessTest, CodesGoOutOverConnectionsThatAreKept)
{
    const TempFolder folder;
    const SmtpServer mail{{}};
    const ServerProcess server{databaseIn(folder), {"--smtp-url", mail.url(), "--smtp-tls", "none"}};
    ASSERT_EQ(signUpMany(server.port(), 12), 12);
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return mail.messages().size() == 12; }));
    EXPECT_LE(mail.connections(), 4U);
}

TEST(MailProcessTest, NumberOfPromisedCodesThatAreLostAtTheEndIsLogged)
{
    const TempFolder folder;
    const SmtpServer mail{{.delay = std::chrono::seconds{6}}}; // longer than the end may take
    ServerProcess server{
        databaseIn(folder),
        {"--smtp-url", mail.url(), "--smtp-tls", "none", "--smtp-connections", "1", "--mail-flush", "1"}};
    const int promised = signUpMany(server.port(), 6);
    EXPECT_EQ(promised, 6);
    EXPECT_EQ(server.terminate(), 0);
    const std::string log = server.log();
    static const std::regex line{"event=mailDropped reason=stopping messages=([0-9]+)"};
    std::smatch match;
    ASSERT_TRUE(std::regex_search(log, match, line)) << log;
    // Whether the one arrives that was under way, only the mail server knows.
    const int sum = static_cast<int>(mail.messages().size()) + std::stoi(match[1]);
    EXPECT_GE(sum, promised) << log;
    EXPECT_LE(sum, promised + 1) << log;
}

TEST(MailProcessTest, CodeThatCannotArriveInTimeIsNotPromised)
{
    const TempFolder folder;
    const std::string nowhere = "smtp://127.0.0.1:" + std::to_string(SmtpServer::freePort());
    const ServerProcess server{databaseIn(folder),
                               {"--smtp-url", nowhere, "--smtp-tls", "none", "--mail-wait", "1"}};
    EXPECT_EQ(signUpMany(server.port(), 1), 1);
    std::this_thread::sleep_for(std::chrono::milliseconds{1500});
    const Reply refused =
        send(server.port(), "POST", "/api/auth/forgot-password", "", R"({"email":"kim@example.org"})");
    EXPECT_EQ(refused.status, 503);
    EXPECT_EQ(refused.error(), "MAIL_BUSY");
}

} // namespace clockwell::server::test
