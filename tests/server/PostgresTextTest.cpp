#include "TestDatabase.h"
#include "World.h"
#include "server/admin/Companies.h"
#include "server/auth/Tokens.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

class PostgresTextTest : public testing::Test
{
protected:
    void add(const std::string &name, const std::string &code)
    {
        database.write([&](Connection &connection) {
            connection.execute("INSERT INTO companies (id, name, code) VALUES (:id, :name, :code)", newId(),
                               name, code);
        });
    }
    std::string query(const std::string &sql)
    {
        return database.read([&](Connection &connection) { return connection.value<std::string>(sql); });
    }

    TempFolder folder;
    Database database{databaseIn(folder)};
};

TEST_F(PostgresTextTest, TextWithANulIsRefusedAndNotCutOff)
{
    try {
        add(std::string{"Sample\0Works", 12}, "SW");
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), DatabaseError::Kind::Constraint);
    }
    EXPECT_EQ(query("SELECT COUNT(*) FROM companies"), "0");
}

TEST_F(PostgresTextTest, RequestWithANulIsRefused)
{
    World world;
    const Reply reply =
        world.post("/api/auth/login", R"({"email":"kim@example.org","password":"x","deviceId":"a\u0000b"})");
    EXPECT_EQ(reply.status, 400) << reply.body;
    EXPECT_EQ(world.login(std::string{"kim\0@example.org", 16}).status, 400);
}

TEST_F(PostgresTextTest, NamesAreInTheOrderOfTheirCodePointsWhateverTheLocale)
{
    EXPECT_EQ(query("SELECT CASE WHEN 'alpha' < 'Zeta' THEN 'otherwise' ELSE 'by code point' END"),
              "otherwise")
        << "the locale of the tests' database no longer shows anything";
    for (const std::string name : {"Zeta", "\xC3\x84ther", "alpha", "Alpha", "a-b", "ab"})
        add(name, name);
    std::vector<std::string> names;
    for (const Company &company : database.read(listCompanies))
        names.push_back(company.name);
    EXPECT_EQ(names, (std::vector<std::string>{"Alpha", "Zeta", "a-b", "ab", "alpha", "\xC3\x84ther"}));
}

TEST_F(PostgresTextTest, CodesChangeCaseInAsciiOnly)
{
    add("One", "\xC3\x84PFEL");
    EXPECT_EQ(query("SELECT LOWER(code) FROM companies"), "\xC3\x84pfel");
}

TEST_F(PostgresTextTest, TextsThatDifferInCaseOnlyAreTwo)
{
    add("One", "sw");
    add("Two", "SW");
    EXPECT_EQ(query("SELECT COUNT(*) FROM companies WHERE code = 'SW'"), "1");
}

TEST_F(PostgresTextTest, LengthsCountCharacters)
{
    std::string name;
    for (int i = 0; i < 200; ++i)
        name += "\xF0\x9F\x99\x82";
    add(name, "SW");
    EXPECT_EQ(query("SELECT name FROM companies"), name);
    EXPECT_THROW(add(name + "x", "OW"), DatabaseError);
}

TEST_F(PostgresTextTest, ShortTextsInColumnsOfFixedLengthAreNotPadded)
{
    database.write([](Connection &connection) {
        connection.execute("INSERT INTO audit (number, at, os_user, command, subject, subject_id, day)"
                           " VALUES (1, 0, 'u', 'c', 's', 'i', 'short')");
    });
    EXPECT_EQ(query("SELECT day FROM audit"), "short");
}

} // namespace clockwell::server::test
