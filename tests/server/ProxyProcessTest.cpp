#include "HttpClient.h"
#include "ServerProcess.h"
#include "World.h"
#include "http/RawClient.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

/// Limits on attempts of the real program, as a proxy at 127.0.0.9 and others see them.
class ProxyProcessTest : public testing::Test
{
protected:
    ProxyProcessTest()
    {
        Database database{file};
        addCompany(database);
        addOffice(database, {});
        addEmployee(database, {});
    }

    static int signIn(const ServerProcess &server, const std::string &forwardedFor, const char *from,
                      const std::string &password = "Wrong-Horse-7")
    {
        RawClient client{server.port(), 0, from};
        const nlohmann::json body{
            {"email", "kim@example.org"}, {"password", password}, {"deviceId", "dev-1"}};
        return client
            .exchange(post("/api/auth/login", body.dump(),
                           "Content-Type: application/json\r\nX-Forwarded-For: " + forwardedFor + "\r\n"))
            .status;
    }

    TempFolder folder;
    std::string file = folder.file("a.db");
    const char *proxy = "127.0.0.9";
};

TEST_F(ProxyProcessTest, AttemptsBehindAProxyCountForWhomItNames)
{
    const ServerProcess server{file, {"--trusted-proxy", "127.0.0.9/32", "--login-attempts", "2"}};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(signIn(server, "192.0.2.1", proxy), 401);
    EXPECT_EQ(signIn(server, "198.51.100.1, 192.0.2.1", proxy), 401);
    EXPECT_EQ(signIn(server, "198.51.100.2, 192.0.2.1", proxy), 429) << "whatever it claims to be";
    EXPECT_EQ(signIn(server, "::ffff:192.0.2.1", proxy), 429);
    EXPECT_EQ(signIn(server, "192.0.2.2", proxy, "Correct-Horse-7"), 200);
}

TEST_F(ProxyProcessTest, AttemptsOfOthersCountForThemselves)
{
    const ServerProcess server{file, {"--trusted-proxy", "127.0.0.9/32", "--login-attempts", "2"}};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(signIn(server, "192.0.2.1", "127.0.0.1"), 401);
    EXPECT_EQ(signIn(server, "192.0.2.2", "127.0.0.1"), 401);
    EXPECT_EQ(signIn(server, "192.0.2.3", "127.0.0.1"), 429);
    EXPECT_EQ(signIn(server, "192.0.2.1", proxy, "Correct-Horse-7"), 200) << "and not for whom they name";
}

TEST_F(ProxyProcessTest, SeveralNetworksMayBeNamed)
{
    const ServerProcess both{
        file, {"--trusted-proxy", "2001:db8::/32", "--trusted-proxy", "127.0.0.9", "--login-attempts", "1"}};
    ASSERT_NE(both.port(), 0);
    EXPECT_EQ(signIn(both, "192.0.2.1", proxy), 401);
    EXPECT_EQ(signIn(both, "192.0.2.1, 2001:db8::5", proxy), 429);
    EXPECT_EQ(signIn(both, "192.0.2.2", proxy), 401);
}

TEST_F(ProxyProcessTest, WhatIsNoNetworkIsWrongUsage)
{
    const ProcessResult result = runServer({"serve", "--database", file, "--trusted-proxy", "10.0.0.0/40"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.errors.find("\"10.0.0.0/40\" is not a network"), std::string::npos) << result.errors;
}

} // namespace clockwell::server::test
