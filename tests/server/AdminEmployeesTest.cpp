#include "Contains.h"
#include "HttpClient.h"
#include "ServerProcess.h"
#include "TempFolder.h"
#include "TestDatabase.h"
#include "World.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace clockwell::server::test {

/// A database file with one company and two offices, made without a server, and one applicant.
class AdminEmployeesTest : public testing::Test
{
protected:
    AdminEmployeesTest()
    {
        addCompany(database);
        addOffice(database, {});
        EmployeeSpec applicant;
        applicant.status = "PENDING";
        applicant.officeId = std::nullopt;
        addEmployee(database, applicant);
    }

    void addSecondOffice()
    {
        OfficeSpec second;
        second.id = "office-2";
        second.name = "Harbour";
        second.zone = "Pacific/Kiritimati";
        addOffice(database, second);
    }
    void execute(const std::string &sql)
    {
        database.write([&](Connection &connection) { connection.execute(sql); });
    }
    ProcessResult employees(std::vector<std::string> words) const
    {
        words.insert(words.begin(), {"admin", "--database", file, "employees"});
        return runServer(words);
    }
    nlohmann::json shown() const
    {
        return nlohmann::json::parse(employees({"show", "kim@example.org", "--json"}).output);
    }
    static Reply login(std::uint16_t port)
    {
        return send(port, "POST", "/api/auth/login", "",
                    R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"dev-1"})");
    }

    TempFolder folder;
    std::string file = databaseIn(folder);
    Database database{file};
};

TEST_F(AdminEmployeesTest, ApprovalTakesTheOnlyOfficeAndTodayAsTheDayOfJoining)
{
    const Day before = TimeZone::named("UTC")->dayOf(systemClock()());
    const ProcessResult result = employees({"approve", "kim@example.org"});
    const Day after = TimeZone::named("UTC")->dayOf(systemClock()());
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_TRUE(
        contains(result.output, "Approved kim@example.org (Kim Sample): office Head Office, role EMPLOYEE"));
    EXPECT_EQ(shown().at("status"), "APPROVED");
    EXPECT_EQ(shown().at("office"), "Head Office");
    const std::string joined = shown().at("joinedOn");
    EXPECT_TRUE(joined == toText(before) || joined == toText(after)) << joined;
}

TEST_F(AdminEmployeesTest, DayOfJoiningIsTodayInTheOfficesTimeZone)
{
    addSecondOffice();
    const auto zone = TimeZone::named("Pacific/Kiritimati");
    const Day before = zone->dayOf(systemClock()());
    EXPECT_EQ(employees({"approve", "kim@example.org", "--office", "harbour"}).exitCode, 0);
    const Day after = zone->dayOf(systemClock()());
    const std::string joined = shown().at("joinedOn");
    EXPECT_TRUE(joined == toText(before) || joined == toText(after)) << joined;
}

TEST_F(AdminEmployeesTest, ApprovingAgainSaysSoAndChangesNothing)
{
    employees({"approve", "kim@example.org"});
    const ProcessResult again = employees({"approve", "KIM@example.org"});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_EQ(again.output, "kim@example.org (Kim Sample) is approved already; nothing was changed.\n");
}

TEST_F(AdminEmployeesTest, ReinstatementKeepsTheDayOfJoining)
{
    execute("UPDATE employees SET status = 'SUSPENDED', office_id = 'office-1', joined_on = '2021-03-04'");
    const ProcessResult result = employees({"approve", "kim@example.org"});
    EXPECT_TRUE(contains(result.output, "Reinstated kim@example.org")) << result.output;
    EXPECT_EQ(shown().at("joinedOn"), "2021-03-04");
}

TEST_F(AdminEmployeesTest, AmongSeveralOfficesOneHasToBeNamed)
{
    addSecondOffice();
    const ProcessResult result = employees({"approve", "kim@example.org"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "Pass --office with one of: Harbour, Head Office.")) << result.errors;
    EXPECT_EQ(shown().at("status"), "PENDING");
}

TEST_F(AdminEmployeesTest, ApprovalKeepsTheOfficeThatIsAssigned)
{
    addSecondOffice();
    EXPECT_EQ(employees({"assign-office", "kim@example.org", "Harbour"}).exitCode, 0);
    EXPECT_EQ(employees({"approve", "kim@example.org"}).exitCode, 0);
    EXPECT_EQ(shown().at("office"), "Harbour");
    EXPECT_TRUE(contains(employees({"assign-office", "kim@example.org", "Harbour"}).output, "already"));
}

TEST_F(AdminEmployeesTest, CompanyComesWithTheOfficeWhenNoneIsSet)
{
    execute("UPDATE employees SET company_id = NULL");
    employees({"approve", "kim@example.org"});
    EXPECT_EQ(shown().at("company"), "Sample Works");
}

TEST_F(AdminEmployeesTest, OfficeOfAnotherCompanyIsRefused)
{
    addSecondOffice();
    execute("INSERT INTO companies (id, name, code) VALUES ('company-2', 'Other Works', 'OW')");
    execute("UPDATE offices SET company_id = 'company-2' WHERE id = 'office-2'");
    const ProcessResult result = employees({"approve", "kim@example.org", "--office", "Harbour"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "belongs to the company Other Works"));
    EXPECT_EQ(employees({"approve", "kim@example.org"}).exitCode, 0); // the only one of the own company
    EXPECT_EQ(shown().at("office"), "Head Office");
}

TEST_F(AdminEmployeesTest, OfficesOfOneNameAreToldApartByIdentifier)
{
    addSecondOffice();
    execute("UPDATE offices SET name = 'Head Office'");
    const ProcessResult result = employees({"approve", "kim@example.org", "--office", "Head Office"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "office-2  Sample Works"));
    EXPECT_EQ(employees({"approve", "kim@example.org", "--office", "office-2"}).exitCode, 0);
}

TEST_F(AdminEmployeesTest, UnverifiedAddressIsApprovedOnlyWhenAskedFor)
{
    execute("UPDATE employees SET email_verified = 0");
    const ProcessResult result = employees({"approve", "kim@example.org"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, "--even-unverified"));
    EXPECT_EQ(shown().at("status"), "PENDING");
    EXPECT_EQ(employees({"approve", "kim@example.org", "--even-unverified"}).exitCode, 0);
    EXPECT_EQ(shown().at("status"), "APPROVED");
    EXPECT_EQ(shown().at("emailVerified"), false);
}

TEST_F(AdminEmployeesTest, RoleIsSetAndChecked)
{
    employees({"approve", "kim@example.org", "--role", "TEAM_LEAD"});
    EXPECT_EQ(shown().at("role"), "TEAM_LEAD");
    for (const char *role : {"boss", "_LEAD", "LEAD_", "TEAM__LEAD", "", "A B"})
        EXPECT_EQ(employees({"approve", "kim@example.org", "--role", role}).exitCode, 2) << role;
    EXPECT_EQ(shown().at("role"), "TEAM_LEAD");
}

TEST_F(AdminEmployeesTest, ApprovalAndSuspensionWorkAtOnceOnARunningServer)
{
    const ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(login(server.port()).status, 403);
    EXPECT_EQ(employees({"approve", "kim@example.org"}).exitCode, 0);
    const Reply signedIn = login(server.port());
    ASSERT_EQ(signedIn.status, 200);
    const std::string access = signedIn.json().at("accessToken");
    EXPECT_EQ(send(server.port(), "GET", "/api/auth/me", access).status, 200);
    const ProcessResult suspended = employees({"suspend", "kim@example.org"});
    EXPECT_EQ(suspended.output, "kim@example.org (Kim Sample) is suspended now and signed out everywhere.\n");
    EXPECT_EQ(send(server.port(), "GET", "/api/auth/me", access).status, 401);
    // The sessions are over for good, not only while the account is suspended.
    EXPECT_EQ(employees({"approve", "kim@example.org"}).exitCode, 0);
    EXPECT_EQ(send(server.port(), "GET", "/api/auth/me", access).status, 401);
    EXPECT_EQ(login(server.port()).status, 200);
}

TEST_F(AdminEmployeesTest, RejectionIsForApplicantsAndSuspensionForTheApproved)
{
    EXPECT_EQ(employees({"suspend", "kim@example.org"}).exitCode, 1);
    EXPECT_EQ(employees({"reject", "kim@example.org"}).exitCode, 0);
    EXPECT_EQ(shown().at("status"), "REJECTED");
    EXPECT_TRUE(contains(employees({"reject", "kim@example.org"}).output, "is rejected already"));
    EXPECT_EQ(employees({"approve", "kim@example.org"}).exitCode, 0);
    EXPECT_TRUE(contains(employees({"reject", "kim@example.org"}).errors, "Use suspend instead."));
    EXPECT_EQ(shown().at("status"), "APPROVED");
}

TEST_F(AdminEmployeesTest, UnknownNamesAreThreeAndSuggest)
{
    const ProcessResult person = employees({"approve", "kin@example.org"});
    EXPECT_EQ(person.exitCode, 3);
    EXPECT_TRUE(contains(person.errors, "Did you mean kim@example.org?")) << person.errors;
    EXPECT_FALSE(contains(employees({"show", "someone@else.example"}).errors, "Did you mean"));
    const ProcessResult office = employees({"approve", "kim@example.org", "--office", "Nowhere"});
    EXPECT_EQ(office.exitCode, 3);
    EXPECT_TRUE(contains(office.errors, "Offices: Head Office.")) << office.errors;
}

TEST_F(AdminEmployeesTest, ListIsFilteredByStatusAndOffice)
{
    const auto count = [this](std::vector<std::string> words) {
        words.insert(words.begin(), {"list", "--json"});
        return nlohmann::json::parse(employees(words).output).size();
    };
    EXPECT_EQ(count({}), 1U);
    EXPECT_EQ(count({"--status", "PENDING"}), 1U);
    EXPECT_EQ(count({"--status", "approved"}), 0U);
    EXPECT_EQ(count({"--status", "unverified"}), 0U);
    EXPECT_EQ(count({"--office", "Head Office"}), 0U);
    EXPECT_EQ(employees({"list", "--status", "approved"}).output, "No employees.\n");
    EXPECT_EQ(employees({"list", "--status", "asleep"}).exitCode, 2);
}

TEST_F(AdminEmployeesTest, TableIsAlignedAndNamesDoNotSteerTheTerminal)
{
    execute("UPDATE employees SET full_name = '王\x1b[2J', joined_on = '2026-01-02'");
    EXPECT_EQ(employees({"list"}).output,
              "NAME    E-MAIL           STATUS   VERIFIED  ROLE      OFFICE  JOINED      LAST DAY\n"
              "王?[2J  kim@example.org  PENDING  yes       EMPLOYEE  -       2026-01-02  -\n");
}

TEST_F(AdminEmployeesTest, NoSecretIsPrinted)
{
    for (const ProcessResult &result :
         {employees({"list", "--json"}), employees({"show", "kim@example.org"})})
        EXPECT_FALSE(contains(result.output, "argon2"));
    EXPECT_EQ(shown().size(), 10U);
}

TEST_F(AdminEmployeesTest, ApprovalOnADatabaseHeldTooLongFailsAndChangesNothing)
{
    WriteBlocker blocker{file};
    const ProcessResult result = employees({"approve", "kim@example.org"});
    blocker.end();
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, testsPostgres() ? "others held" : "locked")) << result.errors;
    EXPECT_EQ(shown().at("status"), "PENDING");
}

TEST_F(AdminEmployeesTest, OptionsMayStandBehindTheCommandAndHelpIsEverywhere)
{
    EXPECT_EQ(runServer({"admin", "employees", "list", "--database", file, "--json"}).exitCode, 0);
    for (const std::vector<std::string> &words : {std::vector<std::string>{"admin", "--help"},
                                                  {"admin", "employees", "--help"},
                                                  {"admin", "employees", "approve", "--help"}}) {
        const ProcessResult help = runServer(words);
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_TRUE(contains(help.output, "Example: clockwell-server admin")) << help.output;
        EXPECT_TRUE(contains(help.output, "--database FILE")) << help.output;
        EXPECT_TRUE(contains(help.output, "--json")) << help.output;
    }
    EXPECT_EQ(runServer({"admin"}).exitCode, 2);
    EXPECT_EQ(employees({"promote"}).exitCode, 2);
}

TEST(AdminDatabaseTest, DatabaseIsNeverMade)
{
    const TempFolder folder;
    const std::string file = folder.file("typo.db");
    const ProcessResult missing = runServer({"admin", "--database", file, "employees", "list"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(contains(missing.errors, "There is no database"));
    EXPECT_FALSE(std::filesystem::exists(file));
    std::ofstream{file}.flush();
    EXPECT_EQ(runServer({"admin", "--database", file, "employees", "list"}).exitCode, 1);
    EXPECT_EQ(std::filesystem::file_size(file), 0U);
}

} // namespace clockwell::server::test
