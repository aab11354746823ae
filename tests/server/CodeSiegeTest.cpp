#include "AccountFixture.h"

#include <functional>

namespace clockwell::server::test {

/// Strangers who cannot read an account's e-mail do everything they can, while its owner needs codes.
/// Requests arrive from addresses of 127.0.0.0/8, each a network for itself.
class CodeSiegeTest : public AccountFixture
{
protected:
    CodeSiegeTest() : AccountFixture(World::cheap()) {}

    /// How many codes a guess at this address may hit now.
    long long codesUnderWay(const std::string &email)
    {
        const long long now = toMillis(world.clock()());
        return world.database().read([&](Connection &connection) {
            return connection.value<long long>(
                "SELECT COUNT(*) FROM codes WHERE email_key = :key AND expires_at > :now", email, now);
        });
    }

    /// Enters a guess, and sums up what chance it had.
    void guess(const std::string &email, const std::string &from)
    {
        const auto mayHit = static_cast<double>(codesUnderWay(email));
        network = from;
        const Reply reply =
            m_guesses++ % 2 == 0 ? reset(noCode, "Evil-Horse-666", email) : verify(noCode, email);
        network = ownersNetwork;
        if (reply.error() == "INVALID_CODE") {
            judged += mayHit;
            chance += mayHit / 1e6;
        } else if (reply.error() == "SECOND_CODE_NEEDED") {
            chance += mayHit / 1e12; // this one and the next have to be the two codes of one message
        } else {
            ASSERT_EQ(reply.status, 429) << reply.body;
        }
    }

    void askForCodes(const std::string &email, const std::string &from)
    {
        network = from;
        forgot(email);
        resend(email);
        signup(email, "Evil-Horse-666");
        network = ownersNetwork;
    }

    void attack(const std::string &email, const std::string &from)
    {
        askForCodes(email, from);
        guess(email, from);
    }

    using Enter = std::function<Reply(const std::string &code)>;

    /// What an owner does with the newest e-mail in the mailbox; true when a code was accepted.
    bool ownerEntersNewestCode(const std::string &email, const Enter &enter)
    {
        for (const std::string &code : codesFor(email)) {
            const Reply reply = enter(code);
            if (reply.status == 200)
                return true;
            if (reply.error() != "SECOND_CODE_NEEDED")
                return false;
        }
        return false;
    }

    /// An address that no other call gave.
    std::string newNetwork()
    {
        const int number = m_networks++;
        return "127.7." + std::to_string(number / 250) + '.' + std::to_string(number % 250 + 1);
    }

    static constexpr const char *ownersNetwork = "127.0.0.1";
    /// Judged like any other guess; six digits would be right once in so many runs.
    static constexpr const char *noCode = "00000x";
    double judged = 0; ///< single codes that were compared with a guess
    double chance = 0;

private:
    int m_guesses = 0;
    int m_networks = 0;
};

TEST_F(CodeSiegeTest, OwnerGetsInWhileGuessersFromManyNetworksGetNowhere)
{
    const std::string owner = "kim@example.org";
    addEmployee(world.database(), {});
    const Enter enter = [&](const std::string &code) { return reset(code, "New-Horse-8", owner); };
    int lateMinutes = 0;
    for (int tenMinutes = 0; tenMinutes < 24 * 6; ++tenMinutes) {
        const bool needed = tenMinutes % 3 == 0; // the owner has forgotten the password
        const int from = tenMinutes % 2 * 2;     // minutes
        bool done = false;
        for (int minute = 0; minute < 10; minute += 2) {
            attack(owner, newNetwork());
            const int asked = needed && minute == from ? forgot(owner).status : 200;
            EXPECT_EQ(asked, 200);
            if (needed && minute >= from && !done) {
                done = ownerEntersNewestCode(owner, enter);
                lateMinutes += done ? 0 : 1;
            }
            guess(owner, "127.8.8.8");
            world.advance(std::chrono::minutes{2});
        }
        EXPECT_EQ(done, needed) << "at " << tenMinutes * 10 << " minutes";
    }
    EXPECT_GT(judged, 15); // it was an attack
    EXPECT_LT(judged, 100);
    EXPECT_LT(chance, 1e-4);
    EXPECT_EQ(lateMinutes, 0);
}

TEST_F(CodeSiegeTest, OwnerVerifiesAnAddressThatStrangersSignUpWith)
{
    for (int owners = 0; owners < 12; ++owners) {
        const std::string owner = "owner" + std::to_string(owners) + "@example.org";
        for (int minute = 0; minute < 20 + owners; ++minute) {
            attack(owner, newNetwork());
            world.advance(std::chrono::minutes{1});
        }
        EXPECT_EQ(signup(owner).status, 201);
        bool done = false;
        for (int minute = 0; minute < 10 && !done; ++minute) {
            attack(owner, newNetwork());
            done = ownerEntersNewestCode(owner, [&](const std::string &code) { return verify(code, owner); });
            world.advance(std::chrono::minutes{1});
        }
        EXPECT_TRUE(done) << owner;
    }
}

TEST_F(CodeSiegeTest, GuesserAtOneNetworkAddressGetsFewGuessesOverAllAccounts)
{
    constexpr int accounts = 90;
    const auto addressOf = [](int number) { return "kim" + std::to_string(number) + "@example.org"; };
    for (int i = 0; i < accounts; ++i)
        addEmployee(world.database(), {.id = "e" + std::to_string(i), .email = addressOf(i)});
    const std::string guesser = "127.8.8.8";
    for (int twoHours = 0; twoHours < 12; ++twoHours) {
        for (int i = twoHours % 3; i < accounts; i += 3) {
            network = guesser;
            forgot(addressOf(i));
            for (int tries = 0; tries < 5; ++tries)
                guess(addressOf(i), guesser);
        }
        world.advance(std::chrono::hours{2});
    }
    EXPECT_GT(judged, 450);
    EXPECT_LT(judged, 1000);
    EXPECT_LT(chance, 1e-3);
}

TEST_F(CodeSiegeTest, OwnerBehindTheGuessersAddressGetsInWithBothCodes)
{
    addEmployee(world.database(), {});
    for (int i = 0; i < 500; ++i) { // more than single codes may be guessed from there
        guess("nobody" + std::to_string(i) + "@example.org", ownersNetwork);
        world.advance(std::chrono::seconds{3});
    }
    forgot();
    const auto codes = codesFor();
    ASSERT_EQ(codes.size(), 2U);
    EXPECT_EQ(reset(codes[0]).error(), "SECOND_CODE_NEEDED");
    EXPECT_EQ(reset(codes[1]).status, 200);
    network = "127.0.0.2"; // for everybody else one is enough
    forgot();
    EXPECT_EQ(reset(world.code()).status, 200);
}

} // namespace clockwell::server::test
