#include "AccountFixture.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace clockwell::server::test {

/// With the real cost of a password check: whoever measures answers must not learn who is registered.
class AccountTimingTest : public AccountFixture
{
protected:
    AccountTimingTest() : AccountFixture(real())
    {
        addEmployee(world.database(), {});
        Passwords passwords{{1, 16 * 1024 * 1024}};
        const std::string hash = passwords.hash("Correct-Horse-7");
        world.database().write([&](Connection &connection) {
            connection.execute("UPDATE employees SET password_hash = :hash", hash);
        });
    }

    static Settings real()
    {
        Settings settings = roomy();
        settings.passwordCost = {1, 16 * 1024 * 1024};
        settings.loginLimits.attempts = 1'000'000;
        settings.codes.perAddress.attempts = 1'000'000;
        settings.codes.wrongCodes.attempts = 1'000'000;
        settings.codes.tries = 1'000'000;
        return settings;
    }

    using Request = std::function<void(const std::string &email)>;

    static double millisecondsOf(const Request &request, const std::string &email)
    {
        const auto start = std::chrono::steady_clock::now();
        request(email);
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }

    /// Median of the unknown address's times over that of the known one's; by turns, for other work on the
    /// machine slows both alike.
    static double ratio(const Request &request)
    {
        constexpr std::size_t Samples = 31;
        std::vector<double> known(Samples);
        std::vector<double> unknown(Samples);
        for (std::size_t i = 0; i < Samples; ++i) {
            known[i] = millisecondsOf(request, "kim@example.org");
            unknown[i] = millisecondsOf(request, "nobody@example.org");
        }
        std::ranges::nth_element(known, known.begin() + Samples / 2);
        std::ranges::nth_element(unknown, unknown.begin() + Samples / 2);
        return unknown[Samples / 2] / known[Samples / 2];
    }

    static void expectAlike(const char *what, const Request &request)
    {
        double measured = ratio(request);
        if (measured < 0.75 || measured > 1.25)
            measured = ratio(request); // a burst of other work: once more
        EXPECT_GT(measured, 0.75) << what;
        EXPECT_LT(measured, 1.25) << what;
    }
};

TEST_F(AccountTimingTest, KnownAndUnknownAddressesTakeTheSameTime)
{
    expectAlike("login", [this](const std::string &email) { world.login(email, "wrong"); });
    expectAlike("forgot", [this](const std::string &email) { forgot(email); });
    expectAlike("verify", [this](const std::string &email) { verify("12345x", email); });
    expectAlike("reset", [this](const std::string &email) { reset("12345x", "New-Horse-8", email); });
    expectAlike("resend", [this](const std::string &email) { resend(email); });
    expectAlike("signup", [this](const std::string &email) { signup(email); }); // last: it makes an account
}

} // namespace clockwell::server::test
