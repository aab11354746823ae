#include "AccountFixture.h"
#include "Contains.h"
#include "LogCatcher.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace clockwell::server::test {

class AccountAttackTest : public AccountFixture
{
protected:
    void SetUp() override { addEmployee(world.database(), {.id = "e9", .email = "old@example.org"}); }
};

TEST_F(AccountAttackTest, TenThousandGuessesFindNoCode)
{
    signup();
    const std::string code = world.code();
    std::map<std::string, int> counts; // by error
    std::vector<std::thread> threads;
    std::mutex lock;
    for (int part = 0; part < 4; ++part)
        threads.emplace_back([&, part] {
            for (int i = 0; i < 2500; ++i) {
                std::string guess = std::to_string(1'000'000 + part * 2500 + i).substr(1);
                const std::string error = verify(guess == code ? other(code) : guess).error();
                const std::lock_guard hold{lock};
                ++counts[error];
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(counts["INVALID_CODE"], 15);
    EXPECT_EQ(counts["SECOND_CODE_NEEDED"], 285);
    EXPECT_EQ(counts["TOO_MANY_ATTEMPTS"] + counts["TOO_MANY_REQUESTS"], 9700);
    EXPECT_EQ(verify(code).status, 429);
    EXPECT_EQ(employee().emailVerified, 0);
    network = "127.0.0.2"; // where the owner is
    EXPECT_EQ(verify(codesFor()[0]).error(), "SECOND_CODE_NEEDED");
    EXPECT_EQ(verify(codesFor()[1]).status, 200);
}

TEST_F(AccountAttackTest, NewCodesDoNotBuyGuessesWithoutEnd)
{
    signup();
    int judged = 0;
    for (int hour = 0; hour < 5; ++hour) {
        for (int round = 0; round < 5; ++round) {
            resend();
            const std::string wrong = other(world.code());
            for (int i = 0; i < 5; ++i)
                judged += verify(wrong).error() == "INVALID_CODE" ? 1 : 0;
        }
        world.advance(std::chrono::hours{1});
    }
    EXPECT_LE(judged, 15 + 5);
    world.advance(std::chrono::hours{24});
    resend();
    EXPECT_EQ(verify(world.code()).status, 200);
}

TEST_F(AccountAttackTest, OfParallelVerificationsExactlyOneSucceeds)
{
    for (int round = 0; round < 10; ++round) {
        const std::string email = "p" + std::to_string(round) + "@example.org";
        signup(email);
        const std::string code = world.code(email);
        std::vector<int> statuses(8);
        std::vector<std::thread> threads;
        for (int &status : statuses)
            threads.emplace_back([&, this] { status = verify(code, email).status; });
        for (std::thread &thread : threads)
            thread.join();
        EXPECT_EQ(std::ranges::count(statuses, 200), 1);
        EXPECT_EQ(std::ranges::count(statuses, 400) + std::ranges::count(statuses, 429), 7);
    }
}

TEST_F(AccountAttackTest, OfParallelResetsExactlyOneSucceeds)
{
    forgot("old@example.org");
    const std::string code = world.code("old@example.org");
    std::vector<int> statuses(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < statuses.size(); ++i)
        threads.emplace_back([&, i] {
            statuses[i] = reset(code, "New-Horse-" + std::to_string(i), "old@example.org").status;
        });
    for (std::thread &thread : threads)
        thread.join();
    ASSERT_EQ(std::ranges::count(statuses, 200), 1);
    const auto winner = std::ranges::find(statuses, 200) - statuses.begin();
    EXPECT_EQ(world.login("old@example.org", "New-Horse-" + std::to_string(winner)).status, 200);
}

TEST_F(AccountAttackTest, SignInThatANewPasswordOvertakesGetsNoSession)
{
    // The old password's hash is an expensive one, so that the new password comes while it is being checked.
    Passwords slow{{.passes = 32}};
    const std::string oldHash = slow.hash("Correct-Horse-7");
    world.database().write([&](Connection &connection) {
        connection.execute("UPDATE employees SET password_hash = :hash", oldHash);
    });
    forgot("old@example.org");
    const std::string code = world.code("old@example.org");
    Reply late;
    std::atomic<bool> answered{false};
    std::thread signIn{[&] {
        late = world.login("old@example.org");
        answered = true;
    }};
    std::this_thread::sleep_for(std::chrono::milliseconds{100});
    const int status = reset(code, "New-Horse-8", "old@example.org").status;
    const bool overtaken = !answered;
    signIn.join();
    ASSERT_EQ(status, 200);
    EXPECT_EQ(world.login("old@example.org", "New-Horse-8").status, 200);
    if (!overtaken)
        GTEST_SKIP() << "The machine was too busy to let the new password overtake the sign-in.";
    EXPECT_EQ(late.status, 401);
    EXPECT_EQ(late.error(), "INVALID_CREDENTIALS");
}

TEST_F(AccountAttackTest, ParallelSignUpsOfOneAddressMakeOneAccount)
{
    std::vector<int> statuses(5);
    std::vector<std::thread> threads;
    for (int &status : statuses)
        threads.emplace_back([&, this] { status = signup().status; });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(std::ranges::count(statuses, 201), 5);
    EXPECT_EQ(world.database().read([](Connection &connection) {
        return connection.value<long long>(
            "SELECT COUNT(*) FROM employees WHERE email_key = 'kim@example.org'");
    }),
              1);
}

TEST_F(AccountAttackTest, InjectedSqlIsJustText)
{
    for (const char *text :
         {"' OR '1'='1", "x'); DROP TABLE employees; --", "\" OR 1=1 --", ":key", "%", "\\"}) {
        Body body = application();
        for (const char *field : {"fullName", "phone", "deviceId", "deviceModel", "osVersion"})
            body[field] = text;
        world.advance(std::chrono::hours{1});
        EXPECT_EQ(call("signup", body).status, 201) << text;
        EXPECT_EQ(employee().fullName, text);
        EXPECT_EQ(employee().phone, text);
        EXPECT_EQ(verify(text).error(), "INVALID_CODE");
        EXPECT_EQ(verify(world.code(), text).error(), "INVALID_CODE");
        EXPECT_EQ(reset(text, std::string{"Aa1-----"} + text, text).error(), "INVALID_CODE");
        EXPECT_EQ(resend(text).status, 400);
        EXPECT_EQ(forgot(text).status, 400);
    }
    EXPECT_EQ(world.login("old@example.org").status, 200);
}

TEST_F(AccountAttackTest, NoFieldBringsALineIntoAMessage)
{
    for (const std::string &line :
         {std::string{"\r\nBcc: eve@example.org"}, std::string{"\nBcc: eve@example.org"},
          std::string{"\rBcc: x"}, std::string("\0x", 2)}) {
        Body body = application();
        body["fullName"] = "Kim" + line;
        EXPECT_EQ(call("signup", body).error(), "VALIDATION_FAILED");
        EXPECT_EQ(signup("kim@example.org" + line).error(), "VALIDATION_FAILED");
        EXPECT_EQ(forgot("old" + line + "@example.org").error(), "VALIDATION_FAILED");
        EXPECT_EQ(resend("old@example.org" + line).error(), "VALIDATION_FAILED");
    }
    EXPECT_EQ(signup("kim@example.org%0d%0aBcc:x").error(), "VALIDATION_FAILED");
    EXPECT_EQ(forgot("=?utf-8?q?=0D=0ABcc:x?=@example.org").error(), "VALIDATION_FAILED");
    EXPECT_TRUE(world.mails().empty());
}

TEST_F(AccountAttackTest, NeitherFilesNorLogHoldASecretOrAnAddress)
{
    const LogCatcher log;
    std::vector<std::string> secrets{"Correct-Horse-7", "New-Horse-8", "Third-Horse-9"};
    signup();
    std::vector<std::string> codes = codesFor();
    verify(other(world.code()));
    verify(world.code());
    approve();
    forgot();
    codes.push_back(world.code());
    reset(world.code());
    const auto login = world.login("kim@example.org", "New-Horse-8").json();
    secrets.push_back(login.at("accessToken"));
    secrets.push_back(login.at("refreshToken"));
    EXPECT_EQ(call("change-password", {{"currentPassword", "New-Horse-8"}, {"newPassword", "Third-Horse-9"}},
                   login.at("accessToken"))
                  .status,
              200);
    forgot(); // a code that is in the database now
    codes.push_back(world.code());
    const std::string files = contentOf(world.databaseFile());
    ASSERT_NE(files.find("kim@example.org"), std::string::npos);
    ASSERT_NE(log.text().find("event=passwordChanged"), std::string::npos);
    for (const std::string &secret : secrets) {
        EXPECT_EQ(files.find(secret), std::string::npos) << secret;
        EXPECT_EQ(log.text().find(secret), std::string::npos) << secret;
    }
    ASSERT_EQ(codes.size(), 4U);
    for (const std::string &code : codes) {
        ASSERT_EQ(code.size(), 6U);
        EXPECT_FALSE(containsCode(files, code)) << code;
        EXPECT_FALSE(containsCode(log.text(), code)) << code;
    }
    EXPECT_EQ(log.text().find("@example.org"), std::string::npos);
    EXPECT_EQ(log.text().find("Kim"), std::string::npos);
}

} // namespace clockwell::server::test
