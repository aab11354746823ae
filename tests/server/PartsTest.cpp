#include "World.h"
#include "server/auth/RateLimit.h"
#include "server/auth/Tokens.h"
#include "server/http/ApiError.h"
#include "server/http/ListenAddress.h"
#include "server/http/NumberText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace clockwell::server::test {

TEST(TokensTest, AreLongRandomAndUrlSafe)
{
    std::set<std::string> tokens;
    for (int i = 0; i < 100; ++i) {
        const std::string token = newToken();
        EXPECT_EQ(token.size(), 43U);
        EXPECT_TRUE(std::ranges::all_of(token, [](unsigned char c) {
            return std::isalnum(c) != 0 || c == '-' || c == '_';
        })) << token;
        tokens.insert(token);
    }
    EXPECT_EQ(tokens.size(), 100U);
}

TEST(TokensTest, HashIsBlake2b)
{
    EXPECT_EQ(tokenHash(""), "0e5751c026e543b2e8ab2eb06099daa1d1e5df47778f7787faab45cdf12fe3a8");
    EXPECT_NE(tokenHash("a"), tokenHash("b"));
}

TEST(TokensTest, IdsAreRandomUuids)
{
    const std::string id = newId();
    EXPECT_EQ(id.size(), 36U);
    EXPECT_EQ(id[14], '4');
    EXPECT_NE(std::string{"89ab"}.find(id[19]), std::string::npos);
    EXPECT_NE(id, newId());
}

TEST(PasswordsTest, HashesAreSaltedArgon2idOfTheGivenCost)
{
    Passwords passwords;
    const std::string hash = passwords.hash("secret");
    EXPECT_EQ(hash.find("$argon2id$v=19$m=19456,t=2,p=1$"), 0U);
    EXPECT_NE(hash, passwords.hash("secret"));
    EXPECT_TRUE(passwords.matches(hash, "secret"));
    EXPECT_FALSE(passwords.matches(hash, "Secret"));
}

TEST(PasswordsTest, NobodyIsNeverMatched)
{
    Passwords passwords{cheapCost};
    EXPECT_FALSE(passwords.matches(passwords.nobodysHash(), ""));
    EXPECT_FALSE(passwords.matches(passwords.nobodysHash(), "secret"));
}

TEST(PasswordsTest, BrokenStoredHashMatchesNothing)
{
    Passwords passwords{cheapCost};
    EXPECT_FALSE(passwords.matches("", ""));
    EXPECT_FALSE(passwords.matches("secret", "secret"));
}

TEST(LoginThrottleTest, ForgetsTheOneIdleForLongestWhenFull)
{
    Instant now{};
    LoginThrottle throttle{{.attempts = 1, .window = std::chrono::seconds{100}, .entries = 2},
                           [&] { return now; }};
    throttle.begin("a", "x").wasWrong();
    now += std::chrono::seconds{1};
    throttle.begin("b", "x").wasWrong();
    now += std::chrono::seconds{1};
    throttle.begin("c", "x").wasWrong(); // forgets a
    EXPECT_THROW(throttle.begin("c", "x").wasWrong(), ApiError);
    throttle.begin("a", "x").wasWrong(); // forgets b
    EXPECT_THROW(throttle.begin("c", "x").wasWrong(), ApiError);
}

TEST(LoginThrottleTest, CountsEachAddressOnItsOwn)
{
    LoginThrottle throttle{{.attempts = 1}, [] { return Instant{}; }};
    throttle.begin("a", "x").wasWrong();
    throttle.begin("a", "y").wasWrong();
    EXPECT_THROW(throttle.begin("a", "x").wasWrong(), ApiError);
}

TEST(LoginThrottleTest, AddressesOfOneIpv6NetworkCountAsOne)
{
    LoginThrottle throttle{{.attempts = 2}, [] { return Instant{}; }};
    throttle.begin("a", "2001:db8:1:2::1").wasWrong();
    throttle.begin("a", "2001:db8:1:2::2").wasRight();
    throttle.begin("a", "2001:db8:1:2::1").wasWrong();
    throttle.begin("a", "2001:db8:1:2:ffff::9").wasWrong();
    EXPECT_THROW(throttle.begin("a", "2001:db8:1:2::3").wasWrong(), ApiError);
    EXPECT_NO_THROW(throttle.begin("a", "2001:db8:1:3::1").wasWrong());
    EXPECT_NO_THROW(throttle.begin("b", "2001:db8:1:2::1").wasWrong());
}

TEST(LoginThrottleTest, AttemptCountsWhileItIsJudgedAndNotWhenItCannotBe)
{
    LoginThrottle throttle{{.attempts = 3}, [] { return Instant{}; }};
    throttle.begin("a", "x").wasWrong();
    for (int round = 0; round < 5; ++round) {
        const auto second = throttle.begin("a", "x");
        const auto third = throttle.begin("a", "x");
        EXPECT_THROW(throttle.begin("a", "x").wasWrong(), ApiError);
    }
    throttle.begin("a", "x").wasWrong();
    throttle.begin("a", "x").wasWrong();
    EXPECT_THROW(throttle.begin("a", "x").wasWrong(), ApiError);
}

TEST(LoginThrottleTest, ClockThatIsSetBackLocksNobodyOutForLongerThanTheWindow)
{
    Instant now{std::chrono::hours{24 * 365}};
    LoginThrottle throttle{{.attempts = 1, .window = std::chrono::seconds{60}}, [&] { return now; }};
    throttle.begin("a", "x").wasWrong();
    now = Instant{};
    try {
        throttle.begin("a", "x").wasWrong(); // counts on: setting the clock back buys no attempt either
        FAIL();
    } catch (const ApiError &error) {
        EXPECT_STREQ(error.what(), "Too many attempts to sign in. Please try again in 60 seconds.");
    }
    now += std::chrono::seconds{60};
    EXPECT_NO_THROW(throttle.begin("a", "x").wasWrong());
}

TEST(RateLimitTest, ClockThatIsSetBackLocksNobodyOutForLongerThanTheWindow)
{
    Instant now{std::chrono::hours{24 * 365}};
    RateLimit limit{{.attempts = 1, .window = std::chrono::seconds{60}}, [&] { return now; }};
    limit.take("a", "Too much.");
    now = Instant{};
    try {
        limit.take("a", "Too much.");
        FAIL();
    } catch (const ApiError &error) {
        EXPECT_STREQ(error.what(), "Too much. Please try again in 60 seconds.");
    }
    now += std::chrono::seconds{60};
    EXPECT_NO_THROW(limit.take("a", "Too much."));
}

TEST(LoginThrottleTest, ShortWaitsAreSaidInSeconds)
{
    Instant now{};
    LoginThrottle throttle{{.attempts = 1, .window = std::chrono::seconds{60}}, [&] { return now; }};
    throttle.begin("a", "x").wasWrong();
    now += std::chrono::milliseconds{59'001};
    try {
        throttle.begin("a", "x").wasWrong();
        FAIL();
    } catch (const ApiError &error) {
        EXPECT_STREQ(error.what(), "Too many attempts to sign in. Please try again in 1 second.");
    }
}

TEST(ListenAddressTest, ReadsBothFamilies)
{
    EXPECT_EQ(parseListenAddress("127.0.0.1:8460")->address, "127.0.0.1");
    EXPECT_EQ(parseListenAddress("127.0.0.1:8460")->port, 8460);
    EXPECT_EQ(parseListenAddress("[::1]:0")->address, "::1");
    EXPECT_EQ(parseListenAddress("[::1]:0")->port, 0);
}

TEST(ListenAddressTest, RefusesOtherForms)
{
    for (const char *text :
         {"", "8460", ":8460", "127.0.0.1", "127.0.0.1:", "127.0.0.1:65536", "127.0.0.1:-1", "127.0.0.1:http",
          "::1:8460", "[::1]", "[127.0.0.1]:1", "127.0.0.1:84 60"})
        EXPECT_FALSE(parseListenAddress(text)) << text;
}

TEST(NumberTextTest, DigitsOfEveryScriptBecomeAscii)
{
    EXPECT_EQ(withAsciiDigits("2026-06"), "2026-06");
    EXPECT_EQ(withAsciiDigits("\u0662\u0660\u0968\uff16 \U0001D7E8"), "2026 6");
    EXPECT_EQ(withAsciiDigits("\u00bd\u2167\u4e00x"), "\u00bd\u2167\u4e00x"); // numbers, but no digits
    EXPECT_EQ(withAsciiDigits(""), "");
}

TEST(NumberTextTest, ReadsWholeFiniteDecimalsOnly)
{
    EXPECT_EQ(parseNumber("-12.5"), -12.5);
    EXPECT_EQ(parseNumber("1e3"), 1000);
    for (const char *text : {"", " 1", "1 ", "+1", "0x10", "1,5", "nan", "inf", "1e999", "--1"})
        EXPECT_FALSE(parseNumber(text)) << text;
}

} // namespace clockwell::server::test
