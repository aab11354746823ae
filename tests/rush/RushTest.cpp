#include "Rush.h"

#include "ServerProcess.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace clockwell::rush::test {

using server::Database;
using server::test::ServerProcess;
using server::test::TempFolder;

namespace {

RushOptions shortRush(unsigned phones)
{
    RushOptions options;
    options.phones = phones;
    options.seconds = 2;
    options.patience = 120;
    return options;
}

/// A server whose database has a defect, for the rush to find.
class DefectiveServer
{
public:
    /// `sql` runs before any company is in the database.
    explicit DefectiveServer(const std::string &sql) : m_database(prepared(m_folder.file("a.db"), sql)) {}

    RushOptions rush(unsigned phones) const
    {
        RushOptions options = shortRush(phones);
        options.server = "http://127.0.0.1:" + std::to_string(m_server.port());
        options.database = m_database;
        return options;
    }

private:
    static std::string prepared(const std::string &file, const std::string &sql)
    {
        Database{file}.write([&](server::Connection &connection) { connection.execute(sql); });
        return file;
    }

    TempFolder m_folder;
    std::string m_database;
    ServerProcess m_server{m_database};
};

} // namespace

TEST(RushTest, EverybodyIsRenewedAndChecksInOnce)
{
    Rush rush{shortRush(40)};
    rush.play();
    EXPECT_TRUE(rush.good());
    EXPECT_EQ(rush.figures().arrived, 40U);
    EXPECT_EQ(rush.figures().checkedIn, 40U);
    EXPECT_EQ(rush.figures().of(Call::refresh).answered.count(), 38U); // two come with a fresh token
    EXPECT_EQ(rush.figures().of(Call::me).others.at("401"), 38U);
    EXPECT_EQ(rush.figures().of(Call::me).answered.count(), 40U);
    EXPECT_EQ(rush.verdict().acknowledged, 40U);
    EXPECT_EQ(rush.verdict().rows, 40U);
    std::ostringstream report;
    rush.print(report);
    EXPECT_NE(report.str().find("checked in: 40 of 40\n"), std::string::npos) << report.str();
    EXPECT_NE(report.str().find("rows: 40 for 40 acknowledged check-ins: 0 lost, 0 doubled"),
              std::string::npos);
}

TEST(RushTest, ManyFromOneAddressBesideSignInsAndAStranger)
{
    RushOptions options = shortRush(20);
    options.addresses = 1;
    options.keepAlive = false;
    options.signIns = 2;
    options.signInSeconds = 1;
    options.strangerSignIns = 2;
    Rush rush{options};
    rush.play();
    EXPECT_EQ(rush.figures().checkedIn, 22U);
    EXPECT_EQ(rush.verdict().rows, 22U);
    EXPECT_EQ(rush.figures().of(Call::login).answered.count(), 2U);
    EXPECT_GT(rush.figures().of(Call::stranger).sent, 0U);
    EXPECT_EQ(rush.figures().of(Call::stranger).answered.count(), 0U);
}

TEST(RushTest, IdleConnectionsAreHeld)
{
    RushOptions options = shortRush(0);
    options.idle = 30;
    Rush rush{options};
    rush.play();
    EXPECT_EQ(rush.idle().open(), 30U);
    EXPECT_EQ(rush.idle().closed(), 0U);
    EXPECT_TRUE(rush.good());
}

TEST(RushTest, AKillInTheMiddleLosesAndDoublesNothing)
{
    RushOptions options = shortRush(100);
    options.seconds = 4;
    options.killAfter = 2;
    Rush rush{options};
    rush.play();
    EXPECT_EQ(rush.kills(), 1U);
    std::size_t unreachable = 0;
    for (std::size_t i = 0; i < callCount; ++i) {
        const auto &others = rush.figures().of(static_cast<Call>(i)).others;
        const auto found = others.find("unreachable");
        unreachable += found == others.end() ? 0 : found->second;
    }
    EXPECT_GT(unreachable, 0U); // the phones did notice
    EXPECT_EQ(rush.figures().checkedIn, 100U);
    EXPECT_EQ(rush.verdict().lost, 0U);
    EXPECT_EQ(rush.verdict().doubled, 0U);
    EXPECT_TRUE(rush.good());
}

TEST(RushTest, FindsAPunchThatWasAcknowledgedAndIsNotThere)
{
    const DefectiveServer server{"CREATE TRIGGER loses AFTER INSERT ON punches BEGIN"
                                 " DELETE FROM punches WHERE id = NEW.id; END"};
    Rush rush{server.rush(3)};
    rush.play();
    EXPECT_EQ(rush.verdict().acknowledged, 3U);
    EXPECT_EQ(rush.verdict().lost, 3U);
    EXPECT_FALSE(rush.good());
}

TEST(RushTest, FindsACheckInThatBecameTwoPunches)
{
    const DefectiveServer server{
        "CREATE TRIGGER doubles AFTER INSERT ON punches WHEN NEW.type = 'IN' BEGIN"
        " INSERT INTO punches SELECT id || '2', attendance_id, ordinal + 1, 'OUT', at, device_id,"
        " latitude, longitude, accuracy, distance FROM punches WHERE id = NEW.id; END"};
    Rush rush{server.rush(3)};
    rush.play();
    EXPECT_EQ(rush.verdict().rows, 6U);
    EXPECT_EQ(rush.verdict().doubled, 3U);
    EXPECT_FALSE(rush.good());
}

TEST(RushTest, CountsPeopleWhoseRenewalIsRefused)
{
    const DefectiveServer server{"CREATE TRIGGER revokes AFTER INSERT ON refresh_tokens"
                                 " WHEN (SELECT COUNT(*) FROM refresh_tokens) = 2 BEGIN"
                                 " UPDATE token_families SET revoked_at = 1 WHERE id = NEW.family_id; END"};
    Rush rush{server.rush(3)};
    rush.play();
    EXPECT_EQ(rush.figures().signedOut(), 1U);
    EXPECT_EQ(rush.figures().signedOutBy.at("refresh 401"), 1U);
    EXPECT_EQ(rush.figures().of(Call::login).answered.count(), 1U); // they sign in again
    EXPECT_EQ(rush.figures().checkedIn, 3U);
    EXPECT_FALSE(rush.good());
}

TEST(RushTest, RefusalsAndRepeatedTapsCountWhereNoneIsAllowed)
{
    // The first taps are refused: those of the seconds after the renewal with which everybody begins.
    const DefectiveServer server{"CREATE TRIGGER refuses BEFORE INSERT ON punches"
                                 " WHEN NEW.at < (SELECT MAX(used_at) FROM token_families) + 8000 BEGIN "
                                 "SELECT RAISE(ABORT, 'no'); END"};
    const TempFolder folder;
    RushOptions options = server.rush(6);
    options.acknowledged = folder.file("acknowledged");
    Rush lenient{options};
    lenient.play();
    EXPECT_TRUE(lenient.good());
    EXPECT_GE(lenient.figures().mostTaps, 2U);
    EXPECT_GE(lenient.figures().failed(), 1U);
    std::ifstream file{options.acknowledged};
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_NE(lines.front().find("\tIN\t20"), std::string::npos) << lines.front();

    options.mostRepeats = 0;
    Rush strict{options};
    strict.play();
    EXPECT_EQ(strict.figures().checkedIn, 6U);
    EXPECT_FALSE(strict.good());

    options.mostRepeats.reset();
    options.flawless = true;
    Rush flawless{options};
    flawless.play();
    EXPECT_EQ(flawless.figures().checkedIn, 6U);
    EXPECT_FALSE(flawless.good());
}

TEST(RushTest, ExpiredTokensAreNoFailures)
{
    RushOptions options = shortRush(20);
    options.flawless = true;
    options.mostRepeats = 0;
    Rush rush{options};
    rush.play();
    EXPECT_GT(rush.figures().of(Call::me).others.at("401"), 0U);
    EXPECT_EQ(rush.figures().failed(), 0U);
    EXPECT_EQ(rush.figures().mostTaps, 1U);
    EXPECT_TRUE(rush.good());
}

TEST(RushTest, PeopleGiveUpInTheEnd)
{
    const DefectiveServer server{"CREATE TRIGGER refuses BEFORE INSERT ON punches BEGIN"
                                 " SELECT RAISE(ABORT, 'no'); END"};
    RushOptions options = server.rush(3);
    options.patience = 5;
    Rush rush{options};
    rush.play();
    EXPECT_EQ(rush.figures().checkedIn, 0U);
    EXPECT_GE(rush.figures().failedTaps, 3U);
    EXPECT_EQ(rush.verdict().rows, 0U);
    EXPECT_FALSE(rush.good());
}

} // namespace clockwell::rush::test
