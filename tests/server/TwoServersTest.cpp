#include "AccountFixture.h"
#include "OtherServer.h"
#include "server/auth/StandIns.h"
#include "server/auth/Tokens.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

namespace clockwell::server::test {

class TwoServersTest : public testing::Test
{
protected:
    TwoServersTest() : world("2026-06-10T09:00:00Z", settings(), {.timeout = std::chrono::seconds{30}})
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
        start();
    }
    static Settings settings()
    {
        Settings settings = World::cheap();
        settings.failedSignIns.size = 12;
        settings.codeRequests.perNetwork.size = 6;
        settings.codes.triesPerNetwork.size = 7;
        return settings;
    }
    /// Starts the other server, anew when it runs already.
    void start()
    {
        other.reset();
        other = std::make_unique<OtherServer>(world, settings(), SendMail{[this](Mail mail) {
                                                  const std::lock_guard lock{m_lock};
                                                  m_mails.push_back(std::move(mail));
                                              }});
    }

    /// `server`: even for the world's, odd for the other one.
    Reply post(int server, const std::string &operation, const nlohmann::json &body,
               const std::string &token = {}) const
    {
        return send(portOf(server), "POST", "/api/" + operation, token, body.dump());
    }
    Reply login(int server, const std::string &email = "kim@example.org",
                const std::string &password = "Correct-Horse-7") const
    {
        return post(server, "auth/login", {{"email", email}, {"password", password}, {"deviceId", "dev-1"}});
    }
    Reply forgot(int server, const std::string &email = "kim@example.org") const
    {
        return post(server, "auth/forgot-password", {{"email", email}});
    }
    Reply reset(int server, const std::string &code, const std::string &email = "kim@example.org") const
    {
        return post(server, "auth/reset-password",
                    {{"email", email}, {"code", code}, {"newPassword", "New-Horse-8"}});
    }
    Reply refresh(int server, const std::string &token) const
    {
        return post(server, "auth/refresh", {{"refreshToken", token}});
    }
    int me(int server, const std::string &token) const
    {
        return send(portOf(server), "GET", "/api/auth/me", token).status;
    }
    static std::string nobody(int number) { return "nobody" + std::to_string(number) + "@example.org"; }

    /// The numbers of six digits in the newest e-mail of the other server.
    std::vector<std::string> codesFromOther() const
    {
        static const std::regex sixDigits{"\\b[0-9]{6}\\b"};
        const std::lock_guard lock{m_lock};
        std::vector<std::string> codes;
        const std::string text = m_mails.empty() ? "" : m_mails.back().text;
        for (std::sregex_iterator code{text.begin(), text.end(), sixDigits}; code != std::sregex_iterator{};
             ++code)
            codes.push_back(code->str());
        return codes;
    }
    std::size_t mails() const
    {
        const std::lock_guard lock{m_lock};
        return m_mails.size() + world.mails().size();
    }

    World world;
    std::unique_ptr<OtherServer> other;

private:
    std::uint16_t portOf(int server) const { return server % 2 == 0 ? world.port() : other->port(); }

    mutable std::mutex m_lock;
    std::vector<Mail> m_mails;
};

TEST_F(TwoServersTest, WrongPasswordsAtBothMeetOneLimitThatOutlivesARestart)
{
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(login(i, "kim@example.org", "wrong").status, 401);
    EXPECT_EQ(login(0).status, 429);
    EXPECT_EQ(login(1).status, 429);
    start();
    EXPECT_EQ(login(1).error(), "TOO_MANY_ATTEMPTS");
    world.advance(std::chrono::minutes{15});
    EXPECT_EQ(login(1).status, 200);
}

TEST_F(TwoServersTest, ParallelGuessesAtBothDoNotSlipThrough)
{
    std::vector<int> statuses(20);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < statuses.size(); ++i)
        threads.emplace_back(
            [&, i] { statuses[i] = login(static_cast<int>(i), "kim@example.org", "guess").status; });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(std::ranges::count(statuses, 401), 5);
    EXPECT_EQ(std::ranges::count(statuses, 429), 15);
}

TEST_F(TwoServersTest, ParallelGuessesOverAllAccountsDoNotSlipThrough)
{
    std::vector<int> statuses(40);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < statuses.size(); ++i)
        threads.emplace_back([&, i] {
            const int number = static_cast<int>(i);
            statuses[i] = login(number, nobody(number), "guess").status;
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(std::ranges::count(statuses, 401), 12);
    EXPECT_EQ(std::ranges::count(statuses, 429), 28);
}

TEST_F(TwoServersTest, WrongPasswordsOfANetworkMeetOneLimitThatOutlivesARestart)
{
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(login(i, nobody(i), "guess").status, 401);
    EXPECT_EQ(login(0).message().substr(0, 24), "Too many wrong passwords");
    EXPECT_EQ(login(1).status, 429);
    start();
    EXPECT_EQ(login(1).status, 429);
}

TEST_F(TwoServersTest, RightPasswordAtOneForgetsTheFailuresAtTheOther)
{
    for (int i = 0; i < 4; ++i)
        login(0, "kim@example.org", "wrong");
    EXPECT_EQ(login(1).status, 200);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(login(0, "kim@example.org", "wrong").status, 401);
}

TEST_F(TwoServersTest, RequestsForCodesMeetOneLimitThatOutlivesARestart)
{
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(forgot(i, nobody(i)).status, 200);
    EXPECT_EQ(forgot(0).status, 429);
    EXPECT_EQ(forgot(1).status, 429);
    start();
    EXPECT_EQ(forgot(1).message().substr(0, 15), "Too many codes ");
    const nlohmann::json signUp{{"fullName", "Lee"},
                                {"email", "lee@example.org"},
                                {"password", "Correct-Horse-7"},
                                {"deviceId", "dev-1"}};
    EXPECT_EQ(post(1, "auth/signup", signUp).status, 429);
}

TEST_F(TwoServersTest, CodesForOneAddressMeetOneLimitThatOutlivesARestart)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(forgot(i).status, 200);
    EXPECT_EQ(mails(), 3U);
    start();
    EXPECT_EQ(forgot(1).status, 200);
    EXPECT_EQ(mails(), 3U);
}

TEST_F(TwoServersTest, NoticesOfSignUpsMeetOneLimitThatOutlivesARestart)
{
    for (int i = 0; i < 5; ++i) {
        const nlohmann::json signUp{{"fullName", "Eve"},
                                    {"email", "kim@example.org"},
                                    {"password", "Evil-Horse-666"},
                                    {"deviceId", "dev-1"}};
        EXPECT_EQ(post(i, "auth/signup", signUp).status, 201);
        world.advance(std::chrono::hours{1});
        start();
    }
    EXPECT_EQ(mails(), 3U);
}

TEST_F(TwoServersTest, WrongCodesOfANetworkMeetOneLimitThatOutlivesARestart)
{
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(reset(i, "000000", nobody(i)).error(), "INVALID_CODE");
    EXPECT_EQ(reset(0, "000000", nobody(8)).status, 429);
    start();
    EXPECT_EQ(reset(1, "000000", nobody(8)).status, 429);
}

TEST_F(TwoServersTest, CodeAskedForAtOneIsEnteredAtTheOther)
{
    forgot(1);
    const auto codes = codesFromOther();
    ASSERT_EQ(codes.size(), 2U);
    EXPECT_EQ(reset(0, codes[0]).status, 200);
    EXPECT_EQ(reset(1, codes[0]).status, 400);
}

TEST_F(TwoServersTest, BothCodesAreEnteredOneAtEach)
{
    world.database().write([&](Connection &connection) { // as after many wrong codes
        connection.execute("INSERT INTO wrong_codes (email_key, amount, at) VALUES"
                           " ('kim@example.org', 15, :now)",
                           toMillis(world.clock()()));
    });
    forgot(1);
    const auto codes = codesFromOther();
    ASSERT_EQ(codes.size(), 2U);
    EXPECT_EQ(reset(0, codes[0]).error(), "SECOND_CODE_NEEDED");
    start();
    EXPECT_EQ(reset(1, codes[1]).status, 200);
}

TEST_F(TwoServersTest, SessionOfOneGoesOnAtTheOther)
{
    const auto session = login(0).json();
    EXPECT_EQ(me(1, session.at("accessToken")), 200);
    const Reply renewed = refresh(1, session.at("refreshToken"));
    ASSERT_EQ(renewed.status, 200);
    EXPECT_EQ(me(0, renewed.json().at("accessToken")), 200);
    EXPECT_EQ(refresh(0, renewed.json().at("refreshToken")).status, 200);
}

TEST_F(TwoServersTest, StolenTokenThatIsUsedAtOneEndsTheSessionAtTheOther)
{
    const auto session = login(0).json();
    const auto renewed = refresh(1, session.at("refreshToken")).json();
    EXPECT_EQ(refresh(0, renewed.at("refreshToken")).status, 200);
    EXPECT_EQ(refresh(1, session.at("refreshToken")).status, 401);
    EXPECT_EQ(me(0, renewed.at("accessToken")), 401);
}

TEST_F(TwoServersTest, PasswordChangedAtOneEndsTheSessionsOfTheOther)
{
    const std::string kept = login(0).json().at("accessToken");
    const auto ended = login(1).json();
    const nlohmann::json change{{"currentPassword", "Correct-Horse-7"}, {"newPassword", "New-Horse-8"}};
    EXPECT_EQ(post(0, "auth/change-password", change, kept).status, 200);
    EXPECT_EQ(me(1, ended.at("accessToken")), 401);
    EXPECT_EQ(refresh(1, ended.at("refreshToken")).status, 401);
    EXPECT_EQ(me(1, kept), 200);
    EXPECT_EQ(login(1).status, 401);
    EXPECT_EQ(login(1, "kim@example.org", "New-Horse-8").status, 200);
}

TEST_F(TwoServersTest, SuspensionIsSeenByBothAtOnce)
{
    const std::string token = login(0).json().at("accessToken");
    EXPECT_EQ(me(1, token), 200);
    Database administrators{world.databaseFile()};
    administrators.write([](Connection &connection) {
        connection.execute("UPDATE employees SET status = 'SUSPENDED' WHERE id = 'employee-1'");
    });
    EXPECT_EQ(me(0, token), 401);
    EXPECT_EQ(me(1, token), 401);
    EXPECT_EQ(login(0).error(), "ACCOUNT_SUSPENDED");
    EXPECT_EQ(login(1).error(), "ACCOUNT_SUSPENDED");
}

TEST_F(TwoServersTest, PunchThatIsRepeatedAtTheOtherGetsTheFirstAnswer)
{
    const std::string token = login(0).json().at("accessToken");
    const auto punch = nlohmann::json::parse(punchBody(48.0005, 11.0, 10, "dev-1"));
    const Reply first = post(0, "attendance/punch", punch, token);
    ASSERT_EQ(first.status, 200);
    world.advance(std::chrono::seconds{5});
    EXPECT_EQ(post(1, "attendance/punch", punch, token).body, first.body);
    world.advance(std::chrono::hours{8});
    const Reply out = post(1, "attendance/punch", punch, login(1).json().at("accessToken"));
    EXPECT_EQ(out.json().at("type"), "OUT");
}

TEST_F(TwoServersTest, UnknownAddressHasTheSameStandInAtBothAndAfterARestart)
{
    for (int i = 0; i < 40; ++i)
        addEmployee(world.database(), {.id = newId(), .email = "p" + std::to_string(i) + "@example.org"});
    Database again{world.databaseFile()};
    const StandIns here{world.database(), "none"};
    const StandIns there{again, "none"};
    std::set<std::string> different;
    for (int i = 0; i < 20; ++i) {
        const std::string hash = world.database().read(
            [&](Connection &connection) { return here.hashFor(connection, nobody(i)); });
        EXPECT_EQ(again.read([&](Connection &connection) { return there.hashFor(connection, nobody(i)); }),
                  hash);
        different.insert(hash);
    }
    EXPECT_GT(different.size(), 5U);
}

} // namespace clockwell::server::test
