#include "LogCatcher.h"
#include "SmtpServer.h"
#include "Within.h"
#include "World.h"
#include "server/mail/MailQueue.h"
#include "server/mail/SmtpDelivery.h"

#include <gtest/gtest.h>

#include <optional>
#include <regex>
#include <set>

namespace clockwell::server::test {

namespace {

std::string recipientOf(const std::string &message)
{
    static const std::regex line{"\nRCPT ([^\n]*)\n"};
    std::smatch match;
    return std::regex_search(message, match, line) ? match[1].str() : std::string{};
}

std::string codeOf(const std::string &message)
{
    static const std::regex line{"\n    ([0-9]{6})\r"};
    std::smatch match;
    return std::regex_search(message, match, line) ? match[1].str() : std::string{};
}

/// Whether the queue knows of so many deliveries, which it does a little later than the mail server.
bool hasDelivered(const LogCatcher &log, std::ptrdiff_t count)
{
    static const std::regex line{"event=mailDelivered"};
    return within(std::chrono::seconds{30}, [&] {
        const std::string text = log.text();
        return std::distance(std::sregex_iterator(text.begin(), text.end(), line), {}) == count;
    });
}

/// The server with its queue, before a mail server that the test starts.
class PostOffice
{
public:
    PostOffice(const std::string &url, const MailQueueOptions &options)
        : queue(std::make_unique<SmtpDelivery>(smtp(url), systemClock()), options),
          world("2026-06-10T09:00:00Z", settings(), {},
                SendMail{[this](Mail mail) { queue.post(std::move(mail)); },
                         [this](Precedence precedence) { return queue.excess(precedence); }})
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {.id = "e1", .email = "owner@example.org"});
        addEmployee(world.database(), {.id = "e2", .email = "unproven@example.org", .verified = false});
    }

    Reply signup(const std::string &email)
    {
        return post("signup", {{"fullName", "Kim Sample"},
                               {"email", email},
                               {"password", "Correct-Horse-7"},
                               {"deviceId", "dev-1"},
                               {"deviceModel", "Phone 3"},
                               {"osVersion", "iOS 17"}});
    }
    Reply resend(const std::string &email) { return post("resend-otp", {{"email", email}}); }
    Reply forgot(const std::string &email) { return post("forgot-password", {{"email", email}}); }
    Reply post(const std::string &operation, const nlohmann::json &body)
    {
        return world.post("/api/auth/" + operation, body.dump());
    }

    MailQueue queue;
    World world;

private:
    static SmtpOptions smtp(const std::string &url)
    {
        SmtpOptions options;
        options.url = url;
        options.encryption = SmtpEncryption::None;
        options.from = "clockwell@example.com";
        return options;
    }
    static Settings settings()
    {
        Settings settings = World::cheap();
        settings.codeRequests.perNetwork.size = 100'000;
        settings.codeRequests.perAddress.attempts = 2;
        return settings;
    }
};

} // namespace

TEST(MailPromiseTest, EveryPromisedCodeArrivesAndTheRestIsRefused)
{
    const SmtpServer mail{{.delay = std::chrono::milliseconds{400}}};
    MailQueueOptions options;
    options.deliveries = 3;
    options.longestWait = std::chrono::seconds{6}; // a stranger's 3
    PostOffice office{mail.url(), options};
    std::set<std::string> promised;
    int refusals = 0;
    for (int i = 0; refusals < 20 && i < 400; ++i) {
        const std::string email = "p" + std::to_string(i) + "@example.org";
        const Reply reply = office.signup(email);
        if (reply.status == 201)
            promised.insert(email);
        else if (reply.status == 503 && reply.error() == "MAIL_BUSY" && reply.headers.contains("retry-after"))
            ++refusals;
    }
    EXPECT_EQ(refusals, 20);
    EXPECT_GT(promised.size(), 3U);
    EXPECT_EQ(office.forgot("owner@example.org").status, 200) << "strangers have kept an owner out";
    promised.insert("owner@example.org");
    EXPECT_TRUE(within(std::chrono::minutes{2}, [&] { return mail.messages().size() == promised.size(); }));
    std::set<std::string> arrived;
    for (const std::string &message : mail.messages())
        arrived.insert(recipientOf(message));
    EXPECT_EQ(arrived, promised);
    EXPECT_LE(mail.connections(), 3U);
    EXPECT_EQ(office.signup("later@example.org").status, 201);
}

TEST(MailPromiseTest, RefusalIsTheSameForEverybodyAndUsesNothingUp)
{
    const LogCatcher log;
    const std::uint16_t port = SmtpServer::freePort();
    std::optional<SmtpServer> mail{std::in_place, SmtpServer::Options{.port = port}};
    MailQueueOptions options;
    options.longestWait = std::chrono::milliseconds{1500};
    options.longestPause = std::chrono::seconds{1};
    PostOffice office{mail->url(), options};
    ASSERT_EQ(office.forgot("owner@example.org").status, 200);
    ASSERT_TRUE(hasDelivered(log, 1));
    ASSERT_EQ(mail->messages().size(), 1U);
    const std::string code = codeOf(mail->messages().front());
    mail.reset();
    ASSERT_EQ(office.signup("early@example.org").status, 201); // nobody knows yet
    ASSERT_TRUE(
        within(std::chrono::seconds{30}, [&] { return office.queue.excess(Precedence::Own).count() > 0; }));
    const std::string refusal = office.forgot("owner@example.org").body;
    for (int round = 0; round < 4; ++round)
        for (const char *email : {"owner@example.org", "unproven@example.org", "nobody@example.org"})
            for (const Reply &reply : {office.signup(email), office.resend(email), office.forgot(email)}) {
                EXPECT_EQ(reply.status, 503);
                EXPECT_EQ(reply.body, refusal);
                EXPECT_TRUE(reply.headers.contains("retry-after"));
            }
    EXPECT_EQ(office
                  .post("reset-password",
                        {{"email", "owner@example.org"}, {"code", code}, {"newPassword", "New-Horse-8"}})
                  .status,
              200)
        << "a refusal has replaced a code that works";
    mail.emplace(SmtpServer::Options{.port = port});
    ASSERT_TRUE(hasDelivered(log, 2));
    ASSERT_EQ(mail->messages().size(), 1U);
    EXPECT_EQ(recipientOf(mail->messages().front()), "early@example.org");
    EXPECT_EQ(office.forgot("owner@example.org").status, 200) << "a refusal has used up a limit";
    EXPECT_TRUE(hasDelivered(log, 3));
    EXPECT_EQ(mail->messages().size(), 2U);
}

TEST(MailPromiseTest, WhatWaitsAtTheEndIsDeliveredOrSaidByNumber)
{
    const LogCatcher log;
    const SmtpServer mail{{.delay = std::chrono::milliseconds{300}}};
    MailQueueOptions options;
    options.deliveries = 2;
    options.flushLimit = std::chrono::seconds{1};
    {
        PostOffice office{mail.url(), options};
        for (int i = 0; i < 30; ++i)
            office.queue.post({"kim@example.org", "Code", "text\n"});
        EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return !mail.messages().empty(); }));
    }
    static const std::regex line{"event=mailDropped reason=stopping messages=([0-9]+)"};
    const std::string text = log.text();
    std::smatch match;
    ASSERT_TRUE(std::regex_search(text, match, line)) << text;
    // Whether those arrive that were under way, up to two, only the mail server knows.
    const std::size_t sum = mail.messages().size() + std::stoul(match[1]);
    EXPECT_GE(sum, 30U);
    EXPECT_LE(sum, 32U);
}

TEST(MailPromiseTest, OnlyOwnersOfProvenAddressesGoFirst)
{
    Settings settings = World::cheap();
    settings.codeRequests.perAddress.attempts = 10;
    World world{"2026-06-10T09:00:00Z", settings};
    addOffice(world.database(), {});
    addEmployee(world.database(), {.id = "e1", .email = "owner@example.org"});
    addEmployee(world.database(), {.id = "e2", .email = "unproven@example.org", .verified = false});
    const auto precedence = [&](const std::string &operation, const std::string &email) {
        nlohmann::json body{
            {"email", email}, {"fullName", "Kim"}, {"password", "Correct-Horse-7"}, {"deviceId", "d"}};
        world.post("/api/auth/" + operation, body.dump());
        return world.mails().back().to == email ? std::optional{world.mails().back().precedence}
                                                : std::nullopt;
    };
    EXPECT_EQ(precedence("signup", "new@example.org"), Precedence::Stranger);
    EXPECT_EQ(precedence("resend-otp", "new@example.org"), Precedence::Stranger);
    EXPECT_EQ(precedence("forgot-password", "owner@example.org"), Precedence::Own);
    EXPECT_EQ(precedence("resend-otp", "owner@example.org"), Precedence::Own);
    EXPECT_EQ(precedence("signup", "owner@example.org"),
              Precedence::Stranger); // a note, for a stranger's doing
    EXPECT_EQ(precedence("forgot-password", "unproven@example.org"), Precedence::Stranger);
}

} // namespace clockwell::server::test
