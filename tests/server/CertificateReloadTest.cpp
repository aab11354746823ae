#include "HttpClient.h"
#include "ServerProcess.h"
#include "TestDatabase.h"
#include "http/TestServer.h"
#include "http/TlsClient.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

namespace clockwell::server::test {

class CertificateReloadTest : public testing::Test
{
protected:
    void install(const TestCertificate &certificate)
    {
        constexpr auto replace = std::filesystem::copy_options::overwrite_existing;
        std::filesystem::copy_file(certificate.certificateFile(), folder.file("certificate"), replace);
        std::filesystem::copy_file(certificate.keyFile(), folder.file("key"), replace);
    }

    static bool serves(const ServerProcess &server, const TestCertificate &certificate)
    {
        TlsClient client{server.port(), certificate.certificateFile(), {}};
        if (!client.connected() || !client.send(get("/health", "Connection: close\r\n")))
            return false;
        bool clean = false;
        return client.receiveAll(clean).starts_with("HTTP/1.1 200 ");
    }

    TempFolder folder;
    TestCertificate first, second;
};

TEST_F(CertificateReloadTest, HangUpTakesTheNewCertificateForTheHandshakesToCome)
{
    install(first);
    ServerProcess server{databaseIn(folder, "a.db"),
                         {"--certificate", folder.file("certificate"), "--private-key", folder.file("key")}};
    ASSERT_TRUE(serves(server, first));
    TlsClient early{server.port(), first.certificateFile(), {}};
    ASSERT_TRUE(early.connected());
    install(second);
    ASSERT_EQ(::kill(server.process(), SIGHUP), 0);
    ASSERT_TRUE(server.logs("event=certificateReloaded"));
    EXPECT_TRUE(eventually([&] { return serves(server, second); }));
    EXPECT_FALSE(serves(server, first));
    bool clean = false;
    early.send(get("/health", "Connection: close\r\n"));
    EXPECT_TRUE(early.receiveAll(clean).starts_with("HTTP/1.1 200 ")) << "its handshake was before";
    EXPECT_EQ(server.terminate(), 0);
}

TEST_F(CertificateReloadTest, UnusableFilesKeepTheOldOneAndAreSaid)
{
    install(first);
    ServerProcess server{databaseIn(folder, "a.db"),
                         {"--certificate", folder.file("certificate"), "--private-key", folder.file("key")}};
    ASSERT_TRUE(serves(server, first));
    std::filesystem::copy_file(second.keyFile(), folder.file("key"),
                               std::filesystem::copy_options::overwrite_existing);
    ASSERT_EQ(::kill(server.process(), SIGHUP), 0);
    ASSERT_TRUE(server.logs("event=certificateKept"));
    EXPECT_TRUE(serves(server, first));
    install(second);
    ASSERT_EQ(::kill(server.process(), SIGHUP), 0);
    ASSERT_TRUE(server.logs("event=certificateReloaded"));
    EXPECT_TRUE(eventually([&] { return serves(server, second); }));
    EXPECT_EQ(server.terminate(), 0);
}

TEST_F(CertificateReloadTest, HangUpOfAServerWithoutCertificateChangesNothing)
{
    ServerProcess server{databaseIn(folder, "a.db")};
    ASSERT_EQ(::kill(server.process(), SIGHUP), 0);
    ASSERT_TRUE(server.logs("event=certificateReloaded"));
    EXPECT_EQ(send(server.port(), "GET", "/health").status, 200);
    EXPECT_EQ(server.terminate(), 0);
}

} // namespace clockwell::server::test
