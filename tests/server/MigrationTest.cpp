#include "World.h"
#include "server/storage/Migrations.h"
#include "server/storage/Schema.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace clockwell::server::test {

namespace {

/// A database as an older version left it.
void makeOld(const std::string &file, long long version)
{
    Connection old{file, 1};
    old.execute("CREATE TABLE schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
    for (long long i = 1; i <= version; ++i) {
        for (const std::string &statement : schemaSteps().at(static_cast<std::size_t>(i - 1)))
            old.execute(statement);
        old.execute("INSERT INTO schema_migrations (version) VALUES (:version)", i);
    }
    std::filesystem::permissions(file,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

void addOldEmployee(Connection &old)
{
    old.execute("INSERT INTO institutes (id, name, code) VALUES ('i', 'Works', 'W')");
    old.execute(
        "INSERT INTO employees (id, institute_id, full_name, email, email_key, password_hash, role, status,"
        " email_verified, joined_on, created_at) VALUES ('e', 'i', 'Kim', 'k@x.org', 'k@x.org', '-',"
        " 'EMPLOYEE', 'APPROVED', 1, '2020-01-01', 0)");
}

void makeOldWithEmployee(const std::string &file, long long version)
{
    makeOld(file, version);
    Connection old{file, 1};
    addOldEmployee(old);
}

std::optional<Employee> readOldEmployee(Database &database)
{
    return database.read([](Connection &connection) { return findEmployeeById(connection, "e"); });
}

void addOldDay(Connection &old)
{
    addOldEmployee(old);
    old.execute("INSERT INTO attendance VALUES ('a', 'e', '2024-06-10', 1, 2, 3, 4, 5, 6.5, 7, 8.5)");
    old.execute("INSERT INTO punches VALUES ('p2', 'a', 'OUT', 7, 'd', 1.5, 2.5, 3.5, 8.5)");
    old.execute("INSERT INTO punches VALUES ('p1', 'a', 'IN', 5, 'd', 1.5, 2.5, 3.5, 6.5)");
}

} // namespace

TEST(MigrationTest, DaysAndPunchesOfAnOlderVersionAreKept)
{
    const TempFolder folder;
    const std::string file = folder.file("a.db");
    makeOld(file, 2);
    {
        Connection old{file, 1};
        addOldDay(old);
    }
    Database database{file};
    database.write([](Connection &connection) {
        EXPECT_EQ(
            connection.value<std::string>(
                "SELECT id || employee_id || work_date || scheduled_start_at || scheduled_end_at ||"
                " grace_minutes || full_day_minutes || check_in_at || check_in_distance || check_out_at ||"
                " check_out_distance FROM attendance"),
            "ae2024-06-10123456.578.5");
        EXPECT_EQ(
            connection.value<std::string>(
                "SELECT GROUP_CONCAT(ordinal || id || attendance_id || type || at || device_id || latitude ||"
                " longitude || accuracy || distance, ' ') FROM (SELECT * FROM punches ORDER BY ordinal)"),
            "1p1aIN5d1.52.53.56.5 2p2aOUT7d1.52.53.58.5");
    });
    EXPECT_THROW(database.write([](Connection &connection) {
        connection.execute("INSERT INTO punches VALUES ('p3', 'nowhere', 1, 'IN', 5, 'd', 1, 2, 3, 4)");
    }),
                 DatabaseError); // the references are those of the new tables
    EXPECT_THROW(database.write([](Connection &connection) { connection.execute("DELETE FROM attendance"); }),
                 DatabaseError);
}

TEST(MigrationTest, EmployeesOfAnOlderVersionHaveNoLastDay)
{
    const TempFolder folder;
    makeOldWithEmployee(folder.file("a.db"), 5);
    Database database{folder.file("a.db")};
    const auto employee = readOldEmployee(database);
    ASSERT_TRUE(employee);
    EXPECT_EQ(employee->joinedOn, "2020-01-01");
    EXPECT_FALSE(employee->lastDay);
}

TEST(MigrationTest, CompaniesOfAnOlderVersionKeepTheirPeople)
{
    const TempFolder folder;
    makeOldWithEmployee(folder.file("a.db"), 6);
    Database database{folder.file("a.db")};
    const auto employee = readOldEmployee(database);
    ASSERT_TRUE(employee);
    EXPECT_EQ(employee->companyId, "i");
    EXPECT_THROW(database.write([](Connection &connection) { connection.execute("DELETE FROM companies"); }),
                 DatabaseError); // the references are those to the renamed table
}

TEST(MigrationTest, WorksWithinALimitOfTheFileToo)
{
    const TempFolder folder;
    makeOld(folder.file("a.db"), 2);
    const Database database{folder.file("a.db"), {.maximumBytes = 1024ULL * 1024}};
}

} // namespace clockwell::server::test
