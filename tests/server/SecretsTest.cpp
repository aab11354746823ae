#include "LogCatcher.h"
#include "World.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

TEST(SecretsTest, NeitherFilesNorLogHoldASecret)
{
    const LogCatcher log;
    std::vector<std::string> secrets{"Correct-Horse-7", "Wrong-Horse-8"};
    std::string files;
    {
        World world;
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
        world.login("kim@example.org", "Wrong-Horse-8");
        const auto login = world.login().json();
        const auto renewed =
            world.post("/api/auth/refresh", nlohmann::json{{"refreshToken", login.at("refreshToken")}}.dump())
                .json();
        for (const auto &pair : {login, renewed}) {
            secrets.push_back(pair.at("accessToken"));
            secrets.push_back(pair.at("refreshToken"));
        }
        EXPECT_EQ(world.punch(renewed.at("accessToken")).status, 200);
        world.advance(std::chrono::minutes{3});
        world.post("/api/auth/refresh", nlohmann::json{{"refreshToken", login.at("refreshToken")}}.dump());
        files = contentOf(world.databaseFile());
    }
    ASSERT_NE(files.find("kim@example.org"), std::string::npos); // it is the right file
    ASSERT_NE(log.text().find("event=punch "), std::string::npos);
    ASSERT_NE(log.text().find("event=sessionRevoked"), std::string::npos);
    for (const std::string &secret : secrets) {
        EXPECT_EQ(files.find(secret), std::string::npos) << secret;
        EXPECT_EQ(log.text().find(secret), std::string::npos) << secret;
    }
    for (const char *personal : {"kim@example.org", "48.000", "$argon2"})
        EXPECT_EQ(log.text().find(personal), std::string::npos) << personal;
}

} // namespace clockwell::server::test
