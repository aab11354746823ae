#include "HttpClient.h"
#include "ServerProcess.h"
#include "TempFolder.h"
#include "TestDatabase.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

namespace clockwell::server::test {

class StrangerOptionsTest : public testing::Test
{
protected:
    void start(std::vector<std::string> options)
    {
        options.insert(options.end(), {"--outbox", m_folder.file("mail")});
        m_server.emplace(databaseIn(m_folder), options);
        ASSERT_NE(m_server->port(), 0);
    }
    int post(const std::string &operation, const nlohmann::json &body) const
    {
        return send(m_server->port(), "POST", "/api/auth/" + operation, "", body.dump()).status;
    }
    int signup(const std::string &email) const
    {
        return post(
            "signup",
            {{"fullName", "Kim"}, {"email", email}, {"password", "Correct-Horse-7"}, {"deviceId", "dev-1"}});
    }
    int login(const std::string &email) const
    {
        return post("login", {{"email", email}, {"password", "wrong"}, {"deviceId", "dev-1"}});
    }
    int verify(const std::string &email) const
    {
        return post("verify-otp", {{"email", email}, {"code", "123456"}});
    }
    std::size_t mails() const
    {
        std::size_t count = 0;
        for (const auto &entry : std::filesystem::directory_iterator{m_folder.file("mail")})
            count += entry.path().extension() == ".eml" ? 1 : 0;
        return count;
    }
    void stop() { EXPECT_EQ(m_server->terminate(), 0); }

private:
    TempFolder m_folder;
    std::optional<ServerProcess> m_server;
};

TEST_F(StrangerOptionsTest, SetTheLimitsOfANetworkAddress)
{
    start({"--failed-sign-ins-per-network", "1", "--code-requests", "2", "--code-tries", "1"});
    EXPECT_EQ(login("a@example.org"), 401);
    EXPECT_EQ(login("b@example.org"), 429);
    EXPECT_EQ(verify("a@example.org"), 400);
    EXPECT_EQ(verify("b@example.org"), 429);
    EXPECT_EQ(signup("a@example.org"), 201);
    EXPECT_EQ(signup("b@example.org"), 201);
    EXPECT_EQ(signup("c@example.org"), 429);
}

TEST_F(StrangerOptionsTest, SetTheLimitsOfAnEmailAddress)
{
    start({"--codes-per-address", "1", "--wrong-codes", "1", "--wrong-codes-per-network", "1000"});
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(signup("kim@example.org"), 201);
    EXPECT_EQ(verify("kim@example.org"), 400);
    stop(); // what waits is written
    EXPECT_EQ(mails(), 1U);
}

TEST(StrangerOptionsUsageTest, EveryLimitIsAtLeastOne)
{
    const TempFolder folder;
    for (const char *option :
         {"--failed-sign-ins-per-network", "--codes-per-address", "--code-requests", "--wrong-codes",
          "--wrong-codes-per-network", "--code-tries", "--sign-up-days"})
        EXPECT_EQ(runServer({"serve", "--database", databaseIn(folder, "x.db"), option, "0"}).exitCode, 2)
            << option;
}

} // namespace clockwell::server::test
