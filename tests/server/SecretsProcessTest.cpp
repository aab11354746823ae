#include "Contains.h"
#include "HttpClient.h"
#include "ServerProcess.h"
#include "SmtpServer.h"
#include "TestDatabase.h"
#include "http/TlsClient.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <regex>
#include <set>
#include <thread>

namespace clockwell::server::test {

namespace {

constexpr const char *email = "kim@example.org";
constexpr const char *oldPassword = "Correct-Horse-7";
constexpr const char *newPassword = "New-Horse-8";
constexpr const char *mailPassword = "S3cret-Mail"; // as the mail server wants it

Reply call(const ServerProcess &server, const std::string &operation, const nlohmann::json &body,
           const std::string &token = {})
{
    return send(server.port(), "POST", "/api/auth/" + operation, token, body.dump());
}

Reply signUp(const ServerProcess &server)
{
    return call(server, "signup",
                {{"fullName", "Kim Sample"},
                 {"email", email},
                 {"password", oldPassword},
                 {"deviceId", "dev-1"},
                 {"deviceModel", "Phone"},
                 {"osVersion", "iOS 17"}});
}

Reply signIn(const ServerProcess &server, const std::string &password)
{
    return call(server, "login", {{"email", email}, {"password", password}, {"deviceId", "dev-1"}});
}

/// The code in the newest of so many messages, for which it waits at most 20 seconds.
std::string newestCode(const SmtpServer &mail, std::size_t messages)
{
    static const std::regex line{"\n    ([0-9]{6})\r"};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{20};
    while (std::chrono::steady_clock::now() < end) {
        const auto all = mail.messages();
        std::smatch match;
        if (all.size() == messages && std::regex_search(all.back(), match, line))
            return match[1];
        std::this_thread::sleep_for(std::chrono::milliseconds{10});
    }
    return {};
}

} // namespace

/// The real program and a real mail server that wants encryption and a sign-in.
class SecretsProcessTest : public testing::Test
{
protected:
    SecretsProcessTest()
    {
        EXPECT_EQ(runServer({"demo", "--database", database}).exitCode, 0); // for its office
        std::ofstream{passwordFile} << mailPassword << "\n";
    }
    std::vector<std::string> mailOptions() const
    {
        return {"--smtp-url",
                mail.url(),
                "--smtp-user",
                "clock",
                "--smtp-password-file",
                passwordFile,
                "--smtp-ca",
                certificate.certificateFile(),
                "--mail-from",
                "clockwell@example.com"};
    }
    std::string inProcess(const ServerProcess &server, const std::string &what) const
    {
        return readFile("/proc/" + std::to_string(server.process()) + "/" + what);
    }

    TempFolder folder;
    TestCertificate certificate;
    std::string database = databaseIn(folder);
    std::string passwordFile = folder.file("mail-password");
    SmtpServer mail{{.certificateFile = certificate.certificateFile(), .keyFile = certificate.keyFile()}};
};

TEST_F(SecretsProcessTest, CodeComesFromTheMailServerAndVerifiesTheAddress)
{
    const ServerProcess server{database, mailOptions()};
    ASSERT_EQ(signUp(server).status, 201);
    const std::string code = newestCode(mail, 1);
    ASSERT_EQ(code.size(), 6U) << server.log();
    EXPECT_TRUE(
        mail.messages().front().starts_with("MAIL clockwell@example.com\nRCPT kim@example.org\nTLS True\n"));
    EXPECT_EQ(call(server, "verify-otp", {{"email", email}, {"code", code}}).status, 200);
    EXPECT_FALSE(std::filesystem::exists(database + ".outbox")); // it goes one way only
}

TEST_F(SecretsProcessTest, MailPasswordOfTheEnvironmentIsUsedAndTakenOutOfIt)
{
    ASSERT_EQ(::setenv("CLOCKWELL_SMTP_PASSWORD", mailPassword, 1), 0);
    const ServerProcess server{database,
                               {"--smtp-url", mail.url(), "--smtp-user", "clock", "--smtp-ca",
                                certificate.certificateFile(), "--mail-from", "clockwell@example.com"}};
    ::unsetenv("CLOCKWELL_SMTP_PASSWORD");
    ASSERT_EQ(signUp(server).status, 201);
    EXPECT_EQ(newestCode(mail, 1).size(), 6U) << server.log();
    const std::string environment = inProcess(server, "environ");
    ASSERT_NE(environment.find("CLOCKWELL_SMTP_PASSWORD="), std::string::npos); // its name is no secret
    EXPECT_EQ(environment.find(mailPassword), std::string::npos);
}

TEST_F(SecretsProcessTest, MessageOfTheLastMomentIsDeliveredBeforeTheEnd)
{
    ServerProcess server{database, mailOptions()};
    ASSERT_EQ(signUp(server).status, 201);
    EXPECT_EQ(server.terminate(), 0);
    EXPECT_EQ(mail.messages().size(), 1U);
}

TEST_F(SecretsProcessTest, NoAnswerWaitsForAMailServerThatIsGone)
{
    const std::string nowhere = "smtp://127.0.0.1:" + std::to_string(SmtpServer::freePort());
    const ServerProcess server{database, {"--smtp-url", nowhere, "--smtp-tls", "none"}};
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(signUp(server).status, 201);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{5});
}

TEST_F(SecretsProcessTest, NeitherProcessTableNorLogShowsASecret)
{
    const ServerProcess server{database, mailOptions()};
    std::set<std::string> secrets{oldPassword, newPassword, mailPassword, "Wrong-Horse-9"};
    ASSERT_EQ(signUp(server).status, 201);
    const std::string verification = newestCode(mail, 1);
    EXPECT_EQ(call(server, "verify-otp", {{"email", email}, {"code", verification}}).status, 200);
    EXPECT_EQ(runServer({"admin", "--database", database, "employees", "approve", email}).exitCode, 0);
    EXPECT_EQ(signIn(server, "Wrong-Horse-9").status, 401);
    const auto first = signIn(server, oldPassword).json();
    const auto renewed = call(server, "refresh", {{"refreshToken", first.at("refreshToken")}}).json();
    EXPECT_EQ(call(server, "forgot-password", {{"email", email}}).status, 200);
    const std::string resetCode = newestCode(mail, 2);
    EXPECT_EQ(
        call(server, "reset-password", {{"email", email}, {"code", resetCode}, {"newPassword", newPassword}})
            .status,
        200);
    const auto second = signIn(server, newPassword).json();
    EXPECT_EQ(call(server, "change-password",
                   {{"currentPassword", newPassword}, {"newPassword", oldPassword}}, second.at("accessToken"))
                  .status,
              200);
    for (const auto &pair : {first, renewed, second})
        secrets.insert(
            {pair.at("accessToken").get<std::string>(), pair.at("refreshToken").get<std::string>()});

    const std::string arguments = inProcess(server, "cmdline");
    const std::string environment = inProcess(server, "environ");
    const std::string log = server.log();
    ASSERT_NE(arguments.find("serve"), std::string::npos); // these are the right files
    ASSERT_NE(environment.find("PATH="), std::string::npos);
    ASSERT_NE(log.find("event=signedIn"), std::string::npos);
    ASSERT_EQ(secrets.size(), 10U);
    for (const std::string &secret : secrets) {
        ASSERT_GE(secret.size(), 6U);
        EXPECT_EQ(arguments.find(secret), std::string::npos) << secret;
        EXPECT_EQ(environment.find(secret), std::string::npos) << secret;
        EXPECT_EQ(log.find(secret), std::string::npos) << secret;
    }
    for (const std::string &code : {verification, resetCode}) {
        ASSERT_EQ(code.size(), 6U);
        for (const std::string &text : {arguments, environment, log})
            EXPECT_FALSE(containsCode(text, code)) << code;
    }
    for (const std::string personal : {email, "Kim Sample", "$argon2"})
        EXPECT_EQ(log.find(personal), std::string::npos) << personal;
}

} // namespace clockwell::server::test
