#include "AdminFixture.h"
#include "PostgresServer.h"
#include "ReservedPort.h"
#include "Within.h"
#include "server/storage/PostgresEngine.h"

#include <cstdlib>

namespace clockwell::server::test {

namespace {

// Two authorities, one of which vouches for db.example.org.
constexpr const char *certificatesScript = R"(
set -e
new='openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2'
for name in ours other; do
    $new -subj "/CN=$name" -keyout $name.key -out $name.pem 2>>openssl.log
done
$new -CA ours.pem -CAkey ours.key -subj /CN=db.example.org -addext subjectAltName=DNS:db.example.org \
    -keyout "$data/server.key" -out "$data/server.crt" 2>>openssl.log
chmod 600 "$data/server.key"
chown --reference="$data" "$data/server.key" "$data/server.crt"
)";

} // namespace

/// A PostgreSQL that encrypts what comes over TCP, if it is asked to; anybody may sign in to it.
class PostgresTlsTest : public testing::Test
{
protected:
    PostgresTlsTest()
    {
        const std::string where = "cd '" + folder.file("") + "'; data='" + postgres.folder() + "/data'";
        if (std::system((where + certificatesScript).c_str()) != 0)
            throw std::runtime_error{"openssl could not make certificates"};
        const auto admin = connectPostgres(atSocket(), std::chrono::seconds{5});
        admin->execute("ALTER SYSTEM SET ssl = on");
        admin->value<std::string>("SELECT CAST(pg_reload_conf() AS TEXT)");
        const auto isOn = [&] { return admin->value<std::string>("SHOW ssl") == "on"; };
        if (!within(std::chrono::seconds{20}, isOn))
            throw std::runtime_error{"PostgreSQL does not encrypt: " +
                                     readFile(postgres.folder() + "/data/log")};
    }

    std::string atSocket() const { return postgres.url() + "&port=" + port; }
    std::string atAddress(const std::string &address, const std::string &mode) const
    {
        return "postgresql://postgres@" + address + ":" + port + "/postgres?sslmode=" + mode;
    }
    /// As a name service would find it.
    std::string named(const std::string &host, const std::string &authority) const
    {
        return atAddress(host, "verify-full") + "&hostaddr=127.0.0.1&sslrootcert=" + folder.file(authority);
    }
    static std::string refusalOf(const std::string &url)
    {
        const ProcessResult result = runServer({"serve", "--database", url, "--listen", "127.0.0.1:0"});
        EXPECT_EQ(result.exitCode, 1);
        return result.errors;
    }
    static std::string logOfAStart(const std::string &url)
    {
        ServerProcess server{url};
        EXPECT_NE(server.port(), 0) << url;
        EXPECT_EQ(server.terminate(), 0);
        return server.log();
    }

    TempFolder folder;
    const ReservedPort reserved;
    std::string port = std::to_string(reserved.number());
    PostgresServer postgres{{"listen_addresses=127.0.0.1", "port=" + port}};
};

TEST_F(PostgresTlsTest, RightAuthorityAndNameServeAndAllIsEncrypted)
{
    const std::string url = named("db.example.org", "ours.pem");
    {
        Database database{url};
        addCompany(database);
        addOffice(database, {});
        addEmployee(database, {});
    }
    const ServerProcess server{url};
    ASSERT_NE(server.port(), 0) << server.log();
    EXPECT_NE(AdminFixture::token(server.port()), "");
    const auto connections = [&](const std::string &condition) {
        return connectPostgres(atSocket(), std::chrono::seconds{5})
            ->value<long long>(
                "SELECT COUNT(*) FROM pg_stat_activity JOIN pg_stat_ssl USING (pid)"
                " WHERE application_name = 'clockwell-server' AND client_addr IS NOT NULL AND " +
                condition);
    };
    EXPECT_GT(connections("ssl"), 0);
    EXPECT_EQ(connections("NOT ssl"), 0);
}

TEST_F(PostgresTlsTest, CertificateOfAnotherHostIsRefused)
{
    const std::string text = refusalOf(named("other.example.org", "ours.pem"));
    EXPECT_TRUE(contains(text, "\"db.example.org\" does not match host name \"other.example.org\"")) << text;
}

TEST_F(PostgresTlsTest, UnknownAuthorityIsRefused)
{
    const std::string text = refusalOf(named("db.example.org", "other.pem"));
    EXPECT_TRUE(contains(text, "certificate verify failed")) << text;
    EXPECT_TRUE(contains(text, "postgresql://db.example.org:" + port + "/postgres cannot be used")) << text;
}

// Reaches this machine, but is none of the addresses that only this machine has.
TEST_F(PostgresTlsTest, UnencryptedConnectionIsSaidAtTheStart)
{
    const std::string log = logOfAStart(atAddress("0.0.0.0", "disable"));
    EXPECT_TRUE(contains(log, "event=databaseUnencrypted")) << log;
    EXPECT_TRUE(contains(log, "sslmode=verify-full")) << log;
}

TEST_F(PostgresTlsTest, EncryptedLoopbackAndSocketAreNoReasonToWarn)
{
    for (const std::string &url :
         {atAddress("0.0.0.0", "prefer"), atAddress("127.0.0.1", "disable"), atSocket()}) {
        const std::string log = logOfAStart(url);
        EXPECT_TRUE(contains(log, "event=listening")) << log;
        EXPECT_FALSE(contains(log, "event=databaseUnencrypted")) << url << "\n" << log;
    }
}

} // namespace clockwell::server::test
