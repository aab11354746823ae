#include "AccountFixture.h"

#include <functional>

namespace clockwell::server::test {

/// The limits that strangers meet, with their defaults.
class StrangerLimitsTest : public AccountFixture
{
protected:
    StrangerLimitsTest() : AccountFixture(World::cheap()) { addEmployee(world.database(), {}); }

    static std::string nobody(int number) { return "nobody" + std::to_string(number) + "@example.org"; }
    int mailsInAnHour(const std::function<void(int)> &request)
    {
        const auto before = world.mails().size();
        for (int i = 0; i < 60; ++i) {
            network = "127.6.6." + std::to_string(i + 1);
            request(i);
            world.advance(std::chrono::minutes{1});
        }
        network = "127.0.0.1";
        return static_cast<int>(world.mails().size() - before);
    }
};

TEST_F(StrangerLimitsTest, CodesForAddressesWithoutAnAccountAreLimitedByNetworkAddress)
{
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(verify("123456", nobody(i)).status, 400) << i;
    const Reply refused = verify("123456", nobody(300));
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.message(),
              "Too many wrong codes came from this network. Please try again in 3 seconds.");
    EXPECT_EQ(reset("123456", "New-Horse-8", nobody(301)).status, 429);
    network = "127.0.0.2";
    forgot();
    EXPECT_EQ(reset(world.code()).status, 200);
}

TEST_F(StrangerLimitsTest, RightCodesDoNotCountTowardsTheNetworksLimit)
{
    for (int i = 0; i < 299; ++i)
        ASSERT_EQ(verify("123456", nobody(i)).status, 400) << i;
    for (int i = 0; i < 5; ++i) {
        forgot();
        EXPECT_EQ(reset(world.code()).status, 200);
        world.advance(std::chrono::minutes{10});
    }
}

TEST_F(StrangerLimitsTest, RequestsWhoseCodeIsEnteredDoNotCountTowardsTheNetworksLimit)
{
    for (int i = 0; i < 150; ++i) {
        ASSERT_EQ(signup(nobody(i)).status, 201) << i;
        ASSERT_EQ(verify(world.code(nobody(i)), nobody(i)).status, 200) << i;
    }
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(forgot(nobody(i)).status, 200) << i;
    const Reply refused = forgot(nobody(100));
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.headers.at("retry-after"), "9");
    EXPECT_EQ(refused.message(),
              "Too many codes were asked for from this network. Please try again in 9 seconds.");
}

TEST_F(StrangerLimitsTest, MailsToOneAddressAreFewHoweverManyAskForThem)
{
    EXPECT_LE(mailsInAnHour([this](int) { forgot(); }), 3 + 5);
    EXPECT_LE(mailsInAnHour([this](int) { signup(); }), 3); // "somebody tried to sign up"
    EXPECT_LE(mailsInAnHour([this](int) { signup("new@example.org"); }), 3 + 5);
}

TEST_F(StrangerLimitsTest, MailsToOneMailboxAreFewWhateverItsTags)
{
    const auto tagged = [](int i) { return "Kim+" + std::to_string(i) + "@example.org"; };
    EXPECT_LE(mailsInAnHour([&](int i) { signup(tagged(i)); }), 3 + 5);
    EXPECT_LE(mailsInAnHour([&](int i) { resend(tagged(i)); }), 3 + 5);
}

TEST_F(StrangerLimitsTest, TagsKeepNobodyFromACode)
{
    addEmployee(world.database(), {.id = "e2", .email = "kim+work@example.org"});
    mailsInAnHour([&](int i) { signup("kim+" + std::to_string(i) + "@example.org"); });
    forgot();
    EXPECT_EQ(reset(world.code()).status, 200);
    forgot("kim+work@example.org");
    EXPECT_EQ(reset(world.code("kim+work@example.org"), "New-Horse-8", "kim+work@example.org").status, 200);
}

TEST_F(StrangerLimitsTest, TaggedAddressesAreAccountsOfTheirOwn)
{
    signup("lee@example.org", "Correct-Horse-7");
    signup("lee+a@example.org", "Correct-Horse-8");
    EXPECT_EQ(verify(world.code("lee@example.org"), "lee@example.org").status, 200);
    EXPECT_EQ(verify(world.code("lee+a@example.org"), "lee+a@example.org").status, 200);
    EXPECT_EQ(world.login("lee@example.org", "Correct-Horse-7").error(), "ACCOUNT_PENDING");
    EXPECT_EQ(world.login("lee+a@example.org", "Correct-Horse-8").error(), "ACCOUNT_PENDING");
}

} // namespace clockwell::server::test
