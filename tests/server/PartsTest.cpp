#include "World.h"
#include "server/auth/Tokens.h"
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
