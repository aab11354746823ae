#include "Contains.h"
#include "HttpClient.h"
#include "Midnight.h"
#include "PortInLog.h"
#include "PrometheusText.h"
#include "ServerProcess.h"
#include "World.h"
#include "http/TestServer.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

class MetricsProcessTest : public testing::Test
{
protected:
    MetricsProcessTest()
    {
        Database database{file};
        addCompany(database);
        addOffice(database, {});
        addEmployee(database, {});
    }

    std::string token() const
    {
        const nlohmann::json body{
            {"email", "kim@example.org"}, {"password", "Correct-Horse-7"}, {"deviceId", "dev-1"}};
        return send(server.port(), "POST", "/api/auth/login", {}, body.dump()).json().at("accessToken");
    }
    Reply punch(const std::string &token, double latitude) const
    {
        return send(server.port(), "POST", "/api/attendance/punch", token,
                    punchBody(latitude, 11.0, 10, "dev-1"));
    }
    Reply ask(const std::string &path, const std::string &method = "GET") const
    {
        return send(m_port, method, path);
    }

    TempFolder folder;
    std::string file = folder.file("a.db");
    ServerProcess server{file, {"--metrics-listen", "127.0.0.1:0"}};
    std::uint16_t m_port = portInLog(server, "metricsListening");
};

TEST_F(MetricsProcessTest, ShowsWhatHappensAndNobodysName)
{
    passMidnight();
    ASSERT_NE(m_port, 0);
    const std::string access = token();
    const Reply outside = punch(access, 49.0);
    ASSERT_EQ(outside.status, 422);
    ASSERT_EQ(punch(access, 48.0005).status, 200);
    ASSERT_EQ(punch(access, 48.0005).status, 200) << "the same punch again";
    ASSERT_EQ(send(server.port(), "GET", "/api/secret/" + access).status, 404);
    // A request is counted when its answer has been sent, and whoever has that may be quicker.
    const char *total = "clockwell_http_requests_total";
    Reply reply;
    ASSERT_TRUE(eventually([&] {
        reply = ask("/metrics");
        return reply.status == 200 && PrometheusText{reply.body}.sum(total, {{"status", "404"}}) > 0;
    }));
    EXPECT_EQ(reply.headers.at("content-type"), "text/plain; version=0.0.4");
    const PrometheusText text{reply.body};
    EXPECT_EQ(text.value("clockwell_punches_total", {{"outcome", "OUTSIDE_GEOFENCE"}}), 1);
    EXPECT_EQ(text.value("clockwell_punches_total", {{"outcome", "IN"}}), 1);
    EXPECT_EQ(text.value("clockwell_punches_total", {{"outcome", "REPEATED"}}), 1);
    EXPECT_EQ(text.sum(total, {{"route", "/api/attendance/punch"}, {"method", "POST"}}), 3);
    EXPECT_EQ(text.value(total, {{"route", "other"}, {"method", "GET"}, {"status", "404"}}), 1);
    EXPECT_EQ(text.sum("clockwell_http_request_duration_seconds_count", {{"route", "/api/auth/login"}}), 1);
    EXPECT_GT(text.value("clockwell_database_connections"), 0);
    EXPECT_EQ(text.value("clockwell_database_connections_in_use"), 0);
    EXPECT_EQ(text.value("clockwell_password_queue_waiting"), 0);
    EXPECT_EQ(text.value("clockwell_mail_queue_messages"), 0);
    EXPECT_EQ(text.value("clockwell_mail_queue_oldest_seconds"), 0);
    EXPECT_FALSE(contains(reply.body, access));
    for (const char *secret : {"secret", "kim", "example", "dev-1", "127.0.0.1", "employee-1"})
        EXPECT_FALSE(contains(reply.body, secret)) << secret;
}

TEST_F(MetricsProcessTest, AnswersNothingElseAndNobodyElse)
{
    ASSERT_NE(m_port, 0);
    EXPECT_EQ(ask("/health").status, 200);
    EXPECT_EQ(ask("/ready").status, 404);
    EXPECT_EQ(ask("/metrics", "POST").status, 405);
    EXPECT_EQ(send(server.port(), "GET", "/metrics").status, 404);
    const ServerProcess without{folder.file("b.db")};
    ASSERT_NE(without.port(), 0);
    EXPECT_FALSE(contains(without.log(), "metricsListening"));
}

TEST_F(MetricsProcessTest, ShowsTheQueueOfPasswordChecks)
{
    ASSERT_NE(m_port, 0);
    Connection blocker{file, 5};
    blocker.execute("BEGIN IMMEDIATE"); // sign-ups wait for it
    constexpr int requests = 40;        // more than there are threads
    std::vector<std::unique_ptr<RawClient>> clients;
    const std::string body =
        R"({"fullName":"Kim","email":"lee@example.org","password":"Correct-Horse-7","deviceId":"d"})";
    for (int i = 0; i < requests; ++i) {
        clients.push_back(std::make_unique<RawClient>(server.port()));
        clients.back()->send(post("/api/auth/signup", body, "Content-Type: application/json\r\n"));
    }
    const auto sum = [&] {
        const PrometheusText text{ask("/metrics").body};
        const double running = text.value("clockwell_password_queue_running");
        return running > 0 ? running + text.value("clockwell_password_queue_waiting") : 0;
    };
    EXPECT_TRUE(eventually([&] { return sum() > 1; }));
    blocker.execute("ROLLBACK");
}

} // namespace clockwell::server::test
