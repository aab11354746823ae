#include "AdminFixture.h"
#include "server/storage/PostgresEngine.h"

#include <filesystem>

namespace clockwell::server::test {

class PostgresAdminTest : public AdminFixture
{
protected:
    std::string count(const std::string &table)
    {
        return database.read([&](Connection &connection) {
            return connection.value<std::string>("SELECT COUNT(*) FROM " + table);
        });
    }
};

TEST_F(PostgresAdminTest, AuditIsOnlyAddedTo)
{
    ASSERT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", "OW"}));
    for (const char *sql :
         {"UPDATE audit SET os_user = 'nobody'", "DELETE FROM audit", "TRUNCATE audit",
          "INSERT INTO audit SELECT * FROM audit ON CONFLICT (number) DO UPDATE SET at = 1"}) {
        EXPECT_THROW(execute(sql), DatabaseError) << sql;
        EXPECT_EQ(adminJson({"audit"}).at(0).at("command"), "companies add") << sql;
    }
    EXPECT_EQ(count("audit"), "1");
}

TEST_F(PostgresAdminTest, BackupNamesThePrograms)
{
    const std::string target = folder.file("monday.db");
    EXPECT_TRUE(ends(1, {"backup", target}, "pg_dump --format=custom --file=FILE 'URL'"));
    EXPECT_FALSE(std::filesystem::exists(target));
    EXPECT_TRUE(ends(1, {"restore", target, "--yes"},
                     "pg_restore --no-owner --single-transaction --dbname='URL' FILE"));
}

TEST_F(PostgresAdminTest, DatabaseOfNobodyIsNotAdministered)
{
    file = emptyPostgresDatabase();
    EXPECT_TRUE(ends(1, {"employees", "list"}, "is not one of clockwell-server"));
    const auto tables =
        connectPostgres(file, std::chrono::seconds{5})->all<SingleColumn<std::string>>(postgresTablesSql);
    EXPECT_TRUE(tables.empty()) << "a mistyped name makes no tables";
}

} // namespace clockwell::server::test
