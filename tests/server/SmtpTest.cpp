#include "LogCatcher.h"
#include "SmtpServer.h"
#include "Within.h"
#include "http/TlsClient.h"
#include "server/mail/MailQueue.h"
#include "server/mail/SmtpDelivery.h"
#include "server/storage/Instant.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <thread>

namespace clockwell::server::test {

namespace {

const Mail sampleMail{"kim@example.org", "Code", "Hello\n.\n..dots\n.\nBye\n"};

} // namespace

class SmtpTest : public testing::Test
{
protected:
    SmtpServer::Options secured(std::vector<std::string> replies = {}) const
    {
        SmtpServer::Options options;
        options.certificateFile = certificate.certificateFile();
        options.keyFile = certificate.keyFile();
        options.firstReplies = std::move(replies);
        return options;
    }
    SmtpOptions client(const std::string &url) const
    {
        SmtpOptions options;
        options.url = url;
        options.user = "clock";
        options.password = "S3cret-Mail";
        options.certificateAuthorities = certificate.certificateFile();
        options.from = "clockwell@example.com";
        options.limit = std::chrono::seconds{10};
        return options;
    }
    /// Nothing when the message was delivered.
    static std::optional<DeliveryError::Kind> failureOf(const SmtpOptions &options,
                                                        const Mail &mail = sampleMail)
    {
        SmtpDelivery delivery{options, systemClock()};
        const std::atomic<bool> giveUp{false};
        try {
            delivery.deliver(mail, giveUp);
            return {};
        } catch (const DeliveryError &error) {
            return error.kind();
        }
    }

    TestCertificate certificate;
};

TEST_F(SmtpTest, MessageArrivesEncryptedAndWhole)
{
    const SmtpServer server{secured()};
    ASSERT_FALSE(failureOf(client(server.url())));
    ASSERT_EQ(server.messages().size(), 1U);
    const std::string message = server.messages().front();
    EXPECT_TRUE(
        message.starts_with("MAIL clockwell@example.com\nRCPT kim@example.org\nTLS True\nFrom: Clockwell "));
    EXPECT_TRUE(message.ends_with("\r\n\r\nHello\r\n.\r\n..dots\r\n.\r\nBye\r\n")) << message;
}

TEST_F(SmtpTest, RecipientThatIsNoAddressNeverReachesTheServer)
{
    const SmtpServer server{secured()};
    for (const char *to : {"kim@example.org>\r\nRCPT TO:<eve@example.org", "kim@example.org\n", "", "kim"})
        EXPECT_EQ(failureOf(client(server.url()), {to, "Code", "text\n"}), DeliveryError::Kind::Permanent)
            << to;
    EXPECT_TRUE(server.messages().empty());
}

TEST_F(SmtpTest, WrongPasswordClosesTheWay)
{
    const SmtpServer server{secured()};
    SmtpOptions options = client(server.url());
    options.password = "wrong";
    EXPECT_EQ(failureOf(options), DeliveryError::Kind::Down);
    EXPECT_TRUE(server.messages().empty());
}

TEST_F(SmtpTest, CertificateOfAnUnknownAuthorityIsRefused)
{
    const TestCertificate stranger;
    const SmtpServer server{secured()};
    SmtpOptions options = client(server.url());
    options.certificateAuthorities = stranger.certificateFile();
    EXPECT_EQ(failureOf(options), DeliveryError::Kind::Down);
    EXPECT_TRUE(server.messages().empty());
}

TEST_F(SmtpTest, ServerWithoutEncryptionGetsNothingUnlessAllowed)
{
    const SmtpServer server{SmtpServer::Options{}};
    SmtpOptions options = client(server.url());
    options.user.clear();
    EXPECT_EQ(failureOf(options), DeliveryError::Kind::Down);
    EXPECT_TRUE(server.messages().empty());
    options.encryption = SmtpEncryption::Optional;
    EXPECT_FALSE(failureOf(options));
    options.encryption = SmtpEncryption::None;
    EXPECT_FALSE(failureOf(options));
    EXPECT_EQ(server.messages().size(), 2U);
}

TEST_F(SmtpTest, RefusalsOfThe400sAreTransientAndOfThe500sPermanent)
{
    const SmtpServer server{secured({"451 later", "550 never"})};
    EXPECT_EQ(failureOf(client(server.url())), DeliveryError::Kind::Transient);
    EXPECT_EQ(failureOf(client(server.url())), DeliveryError::Kind::Permanent);
    EXPECT_FALSE(failureOf(client(server.url())));
}

TEST_F(SmtpTest, ConnectionsAreKeptAndNoMoreThanDeliveriesAtOnce)
{
    const SmtpServer server{secured()};
    MailQueueOptions queueOptions;
    queueOptions.deliveries = 3;
    MailQueue queue{std::make_unique<SmtpDelivery>(client(server.url()), systemClock()), queueOptions};
    for (int i = 0; i < 30; ++i)
        queue.post(sampleMail);
    EXPECT_TRUE(within(std::chrono::minutes{1}, [&] { return server.messages().size() == 30; }));
    EXPECT_LE(server.connections(), 3U);
}

TEST_F(SmtpTest, ConnectionThatTheServerHasClosedIsReplaced)
{
    SmtpServer::Options closing = secured();
    closing.messagesOfAConnection = 1;
    const SmtpServer server{closing};
    SmtpDelivery delivery{client(server.url()), systemClock()};
    const std::atomic<bool> giveUp{false};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NO_THROW(delivery.deliver(sampleMail, giveUp)) << i;
        EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return server.closed() == i + 1; }));
    }
    EXPECT_EQ(server.messages().size(), 3U);
    EXPECT_EQ(server.connections(), 3U);
}

TEST_F(SmtpTest, WayCanBeTriedWithoutAMessage)
{
    const SmtpServer server{secured()};
    SmtpDelivery delivery{client(server.url()), systemClock()};
    const std::atomic<bool> giveUp{false};
    EXPECT_NO_THROW(delivery.check(giveUp));
    EXPECT_NO_THROW(delivery.deliver(sampleMail, giveUp));
    EXPECT_NO_THROW(delivery.check(giveUp));
    EXPECT_EQ(server.connections(), 1U);
    SmtpOptions options = client(server.url());
    options.password = "wrong";
    EXPECT_THROW(SmtpDelivery(options, systemClock()).check(giveUp), DeliveryError);
    EXPECT_THROW(
        SmtpDelivery(client("smtp://127.0.0.1:" + std::to_string(SmtpServer::freePort())), systemClock())
            .check(giveUp),
        DeliveryError);
    EXPECT_EQ(server.messages().size(), 1U);
}

TEST_F(SmtpTest, ServerThatStallsDoesNotHoldTheEndOfAKeptConnection)
{
    const SmtpServer server{secured()};
    std::chrono::steady_clock::time_point start;
    {
        SmtpDelivery delivery{client(server.url()), systemClock()};
        const std::atomic<bool> giveUp{false};
        delivery.deliver(sampleMail, giveUp);
        ::kill(server.process(), SIGSTOP);
        start = std::chrono::steady_clock::now();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds{10});
}

TEST_F(SmtpTest, ServerThatIsDownGetsTheMessageWhenItIsBack)
{
    const LogCatcher log;
    const SmtpServer::Options later = secured();
    const SmtpOptions options = client("smtp://127.0.0.1:" + std::to_string(later.port));
    MailQueueOptions queueOptions;
    queueOptions.pauses.assign(200, std::chrono::milliseconds{100});
    MailQueue queue{std::make_unique<SmtpDelivery>(options, systemClock()), queueOptions};
    queue.post(sampleMail);
    EXPECT_TRUE(within(std::chrono::seconds{30},
                       [&] { return log.text().find("event=mailFailed") != std::string::npos; }));
    const SmtpServer server{later};
    EXPECT_TRUE(within(std::chrono::minutes{2}, [&] { return server.messages().size() == 1; }));
    for (const char *secret : {"S3cret-Mail", "kim@example.org", "dots"})
        EXPECT_EQ(log.text().find(secret), std::string::npos) << secret;
}

TEST_F(SmtpTest, ServerThatNeverSpeaksDoesNotHoldTheEnd)
{
    const int silent = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(::bind(silent, reinterpret_cast<const sockaddr *>(&address), size), 0);
    ASSERT_EQ(::listen(silent, 4), 0); // connections are made, and nobody ever answers them
    ASSERT_EQ(::getsockname(silent, reinterpret_cast<sockaddr *>(&address), &size), 0);
    SmtpOptions options = client("smtp://127.0.0.1:" + std::to_string(ntohs(address.sin_port)));
    options.limit = std::chrono::seconds{60};
    MailQueueOptions queueOptions;
    queueOptions.flushLimit = std::chrono::milliseconds{300};
    const auto start = std::chrono::steady_clock::now();
    {
        MailQueue queue{std::make_unique<SmtpDelivery>(options, systemClock()), queueOptions};
        queue.post(sampleMail);
    }
    ::close(silent);
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken, std::chrono::milliseconds{300});
    EXPECT_LT(taken, std::chrono::seconds{10});
}

} // namespace clockwell::server::test
