#include "AccountFixture.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <string>
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
        settings.failedSignIns.size = 1'000'000;
        settings.codes.wrongCodes.size = 1'000'000;
        settings.codes.wrongPerNetwork.size = 1'000'000;
        settings.codes.triesPerNetwork.size = 1'000'000;
        return settings;
    }

    using Request = std::function<Reply(const std::string &email)>;

    template <class Work>
    static double millisecondsOf(Work work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }

    using Series = std::vector<double>;

    /// The value below which this part of a series lies.
    static double quantile(Series series, double part)
    {
        const auto at = series.begin() + static_cast<std::ptrdiff_t>(part * double(series.size()));
        std::ranges::nth_element(series, at);
        return *at;
    }
    /// What most requests take at least: other work on the machine only ever adds to it, and rarely to three
    /// in four.
    static double typical(const Series &series) { return quantile(series, 0.25); }

    /// How long one password takes on this machine, in milliseconds.
    static double hashTime()
    {
        Passwords passwords{real().passwordCost};
        Series times(5);
        for (double &time : times)
            time = millisecondsOf([&] { passwords.hash("Correct-Horse-7"); });
        return typical(times);
    }

    struct Measured
    {
        double difference; ///< between unknown addresses and the known one, in milliseconds
        double allowed;
    };

    /// Two series of the one known address say what the machine's other work makes of equal requests, and so
    /// how much difference says nothing; by turns, for that work slows them all alike. No unknown address
    /// comes twice: the second time the server might know it.
    Measured measure(const Request &prepare, const Request &request, int status)
    {
        constexpr std::size_t samples = 19;
        Series once;
        Series again;
        Series unknown;
        const auto ask = [&](Series &series, const std::string &email) {
            world.advance(std::chrono::minutes{11}); // the last request's code is over, and a new one is made
            prepare(email);
            Reply reply;
            series.push_back(millisecondsOf([&] { reply = request(email); }));
            EXPECT_EQ(reply.status, status) << reply.body;
        };
        for (std::size_t i = 0; i < samples; ++i) {
            for (std::size_t turn = i; turn < i + 3; ++turn) // none of the three is always the first
                if (turn % 3 == 0)
                    ask(once, "kim@example.org");
                else if (turn % 3 == 1)
                    ask(unknown, nobody());
                else
                    ask(again, "kim@example.org");
        }
        double spread = 0;
        constexpr std::array<double, 4> parts{0.125, 0.25, 0.375, 0.5};
        for (const double part : parts)
            spread += std::abs(quantile(once, part) - quantile(again, part)) / parts.size();
        Series known = once;
        known.insert(known.end(), again.begin(), again.end());
        return {std::abs(typical(unknown) - typical(known)), 3 * spread + hashTime() / 10};
    }

    void expectAlike(
        const char *what, int status, const Request &request,
        const Request &prepare = [](const auto &) { return Reply{}; })
    {
        constexpr int mostTimes = 4; // a burst of other work ends; what tells an address tells it every time
        Measured measured = measure(prepare, request, status);
        for (int times = 1; times < mostTimes && measured.difference > measured.allowed; ++times)
            measured = measure(prepare, request, status);
        EXPECT_LE(measured.difference, measured.allowed) << what << ", milliseconds";
    }

    /// An address that no request has named before.
    std::string nobody() { return "nobody" + std::to_string(m_nobodies++) + "@example.org"; }

private:
    int m_nobodies = 0;
};

// Known and unknown addresses take the same time. Each request has a test of its own, for many hashes take
// long.

TEST_F(AccountTimingTest, SignInTellsNoAddress)
{
    expectAlike(
        "login", 401, [this](const std::string &email) { return world.login(email, "wrong"); });
}

TEST_F(AccountTimingTest, ForgottenPasswordTellsNoAddress)
{
    expectAlike(
        "forgot", 200, [this](const std::string &email) { return forgot(email); });
}

// Whoever tries codes asks for one first, which anybody can for any address.

TEST_F(AccountTimingTest, WrongCodeTellsNoAddress)
{
    expectAlike(
        "verify", 400, [this](const std::string &email) { return verify("12345x", email); },
        [this](const std::string &email) { return forgot(email); });
}

TEST_F(AccountTimingTest, ResetWithAWrongCodeTellsNoAddress)
{
    expectAlike(
        "reset", 400, [this](const std::string &email) { return reset("12345x", "New-Horse-8", email); },
        [this](const std::string &email) { return forgot(email); });
}

TEST_F(AccountTimingTest, ResentCodeTellsNoAddress)
{
    expectAlike(
        "resend", 200, [this](const std::string &email) { return resend(email); });
}

TEST_F(AccountTimingTest, SignUpTellsNoAddress)
{
    expectAlike(
        "signup", 201, [this](const std::string &email) { return signup(email); });
}

TEST_F(AccountTimingTest, AccountsWithAHashOfAnotherCostAreNotToldFromUnknownAddresses)
{
    Passwords former{{2, 16 * 1024 * 1024}};
    const std::string hash = former.hash("Correct-Horse-7");
    world.database().write([&](Connection &connection) {
        connection.execute("UPDATE employees SET password_hash = :hash", hash);
    });
    expectAlike("login", 401, [this](const std::string &email) { return world.login(email, "wrong"); });
}

} // namespace clockwell::server::test
