#include "server/operation/Metrics.h"

#include "PrometheusText.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace clockwell::server::test {

using std::chrono::microseconds;
using std::chrono::milliseconds;

namespace {

double now()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace

TEST(MetricsTest, TextBeforeAnythingHappenedIsValid)
{
    const double before = now();
    const Metrics metrics;
    const PrometheusText text{metrics.text()};
    EXPECT_EQ(text.sum("clockwell_build_info", {}), 1);
    EXPECT_GE(text.value("process_start_time_seconds"), before - 1);
    EXPECT_LE(text.value("process_start_time_seconds"), now() + 1);
    EXPECT_EQ(text.sum("clockwell_database_retries_total", {}), 0);
}

TEST(MetricsTest, RequestsByRouteStatusAndTime)
{
    Metrics metrics;
    metrics.countRequest({"GET", "/a", 200, microseconds(4'000)});
    metrics.countRequest({"GET", "/a", 200, microseconds(60'000)});
    metrics.countRequest({"GET", "/a", 503, std::chrono::seconds(60)});
    metrics.countRequest({"POST", "/a", 0, microseconds(1)});
    const PrometheusText text{metrics.text()};
    const char *total = "clockwell_http_requests_total";
    EXPECT_EQ(text.types().at(total), "counter");
    EXPECT_EQ(text.value(total, {{"method", "GET"}, {"route", "/a"}, {"status", "200"}}), 2);
    EXPECT_EQ(text.value(total, {{"method", "GET"}, {"route", "/a"}, {"status", "503"}}), 1);
    EXPECT_EQ(text.value(total, {{"method", "POST"}, {"route", "/a"}, {"status", "0"}}), 1);
    const std::string times = "clockwell_http_request_duration_seconds";
    EXPECT_EQ(text.types().at(times), "histogram");
    const auto bucket = [&](const char *limit) {
        return text.value(times + "_bucket", {{"method", "GET"}, {"route", "/a"}, {"le", limit}});
    };
    EXPECT_EQ(bucket("0.005"), 1);
    EXPECT_EQ(bucket("0.1"), 2);
    EXPECT_EQ(bucket("25"), 2);
    EXPECT_EQ(bucket("+Inf"), 3);
    EXPECT_NEAR(text.value(times + "_sum", {{"method", "GET"}, {"route", "/a"}}), 60.064, 1e-6);
}

TEST(MetricsTest, PunchesByOutcomeAndRetriesBySqlState)
{
    Metrics metrics;
    for (const char *outcome : {"IN", "IN", "OUTSIDE_GEOFENCE"})
        metrics.countPunch(outcome);
    for (const char *state : {"40001", "40001", "40P01", "", "a name", "4000a", "400011"})
        metrics.countDatabaseRetry(state);
    const PrometheusText text{metrics.text()};
    EXPECT_EQ(text.value("clockwell_punches_total", {{"outcome", "IN"}}), 2);
    EXPECT_EQ(text.value("clockwell_punches_total", {{"outcome", "OUTSIDE_GEOFENCE"}}), 1);
    EXPECT_EQ(text.value("clockwell_database_retries_total", {{"sqlstate", "40001"}}), 2);
    EXPECT_EQ(text.value("clockwell_database_retries_total", {{"sqlstate", "40P01"}}), 1);
    EXPECT_EQ(text.value("clockwell_database_retries_total", {{"sqlstate", "other"}}), 4);
}

TEST(MetricsTest, GaugesAreReadEachTime)
{
    Metrics metrics;
    std::size_t used = 1;
    Metrics::Gauges gauges;
    gauges.connections = [] { return std::size_t{8}; };
    gauges.connectionsInUse = [&used] { return used++; };
    gauges.mailsAge = [] { return std::chrono::seconds{90}; };
    metrics.readFrom(gauges);
    const PrometheusText first{metrics.text()};
    EXPECT_EQ(first.types().at("clockwell_database_connections"), "gauge");
    EXPECT_EQ(first.value("clockwell_database_connections"), 8);
    EXPECT_EQ(first.value("clockwell_database_connections_in_use"), 1);
    EXPECT_EQ(first.value("clockwell_mail_queue_oldest_seconds"), 90);
    EXPECT_FALSE(first.types().contains("clockwell_mail_queue_messages")) << "nothing reads it";
    EXPECT_EQ(PrometheusText{metrics.text()}.value("clockwell_database_connections_in_use"), 2);
}

TEST(MetricsTest, CountsOfSeveralThreadsAreAllThere)
{
    Metrics metrics;
    const auto punch = [&metrics] {
        for (int i = 0; i < 1000; ++i)
            metrics.countPunch("IN");
    };
    std::thread one{punch}, two{punch};
    for (int i = 0; i < 20; ++i)
        EXPECT_NO_THROW(PrometheusText{metrics.text()});
    one.join();
    two.join();
    EXPECT_EQ(PrometheusText{metrics.text()}.value("clockwell_punches_total", {{"outcome", "IN"}}), 2000);
}

TEST(PrometheusTextTest, WhatTheFormatDoesNotAllowIsNoticed)
{
    const std::string head = "# HELP a_b Help.\n# TYPE a_b counter\n";
    EXPECT_EQ((PrometheusText{head + "a_b{x=\"q\\\"\\\\\\n\"} 1e3\n"}.value("a_b", {{"x", "q\"\\\n"}})),
              1000);
    for (const char *wrong :
         {"a_b 1", "b 1\n", "a_b{x=\"1\" 1\n", "a_b{x=1} 1\n", "a_b{x=\"\\q\"} 1\n", "a_b one\n", "a_b -1\n",
          "a_b 1\na_b 2\n", "a_b{1x=\"\"} 1\n", "a-b 1\n", "a_b{le=\"1\"} 1\n", "a_b{x=\"1\",x=\"2\"} 1\n",
          "# TYPE a_b gauge\n", "a_b 1\n# HELP c Help.\n# TYPE c gauge\nc 1\na_b 2\n", "  a_b 1\n"})
        EXPECT_THROW(PrometheusText{head + wrong}, std::runtime_error) << wrong;
    EXPECT_THROW(PrometheusText{"# TYPE a gauge\na 1\n"}, std::runtime_error) << "no HELP";
    EXPECT_THROW(PrometheusText{"a 1\n"}, std::runtime_error);
    const std::string histogram = "# HELP h Help.\n# TYPE h histogram\n";
    EXPECT_NO_THROW(
        PrometheusText{histogram + "h_bucket{le=\"1\"} 1\nh_bucket{le=\"+Inf\"} 2\nh_sum 3\nh_count 2\n"});
    for (const char *wrong : {"h_bucket{le=\"1\"} 3\nh_bucket{le=\"+Inf\"} 2\nh_sum 3\nh_count 2\n",
                              "h_bucket{le=\"1\"} 1\nh_bucket{le=\"+Inf\"} 2\nh_sum 3\nh_count 3\n",
                              "h_bucket{le=\"1\"} 1\nh_sum 3\nh_count 1\n", "h 1\n"})
        EXPECT_ANY_THROW(PrometheusText{histogram + wrong}) << wrong;
}

} // namespace clockwell::server::test
