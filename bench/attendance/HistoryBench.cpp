#include "Ratio.h"
#include "attendance/HistoryModel.h"
#include "net/Decoding.h"
#include "support/FakeServer.h"

#include <QGuiApplication>
#include <QProcess>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

// The history with 10,000 days beside one with ten: the same screen, in processes of their own that load it
// from this one. Times are processor times of the UI thread in milliseconds.

using namespace clockwell;
using namespace Qt::StringLiterals;

namespace {

constexpr int many = 10'000;
constexpr int few = 10;
const int rounds = bench::roundsOf(5);
constexpr int runLimitMs = 60'000;
constexpr double frameMs = 16;
constexpr double mostMoreBytes = 12.0 * 1024 * 1024;

QByteArray answer(int days)
{
    QByteArrayList list;
    for (int i = days; i-- > 0;) {
        const QByteArray date = "20" + QByteArray::number(10 + i / 336 % 30) + "-" +
                                QByteArray::number(1 + i / 28 % 12).rightJustified(2, '0') + "-" +
                                QByteArray::number(1 + i % 28).rightJustified(2, '0');
        list.append(R"({"id":"4f1b2c3d-0000-4000-8000-)" + QByteArray::number(i).rightJustified(12, '0') +
                    R"(","workDate":")" + date + R"(","status":")" + (i % 3 ? "ON_TIME" : "LATE") +
                    R"(","checkInAt":")" + date + R"(T09:04:30.123Z","checkOutAt":")" + date +
                    R"(T17:09:00Z","lateMinutes":)" + (i % 3 ? "0" : "12") +
                    R"(,"earlyLeaveMinutes":0,"workingMinutes":485,"checkInDistanceMeters":"35.7"})");
    }
    return "[" + list.join(',') + "]";
}

/// What history_part prints.
struct Run
{
    double update = 0;
    double paint = 0;
    double load = 0;
    double frame = 0;
    double slowFrame = 0;
    double reload = 0;
    double bytes = 0;
};

std::optional<Run> show(int days)
{
    test::FakeServer server;
    server.expect("GET", "/api/attendance/me").reply(200, answer(days));
    server.expect("GET", "/api/attendance/me").reply(200, answer(days + 1));
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QStringLiteral(HISTORY_PART), {server.url(u"/api"_s).toString(), QString::number(days)});
    if (!process.waitForFinished(runLimitMs) || process.exitCode() != 0)
        return std::nullopt;
    const auto words = process.readAllStandardOutput().simplified().split(' ');
    const auto word = [&words](int index) { return words.value(index).toDouble(); };
    return Run{word(0), word(1), word(2), word(3), word(4), word(5), word(6)};
}

double medianOf(const std::vector<Run> &runs, double Run::*value)
{
    std::vector<double> values;
    for (const Run &run : runs)
        values.push_back(run.*value);
    return bench::median(values);
}

/// Of the run that was disturbed least: whatever else the machine does only ever adds to it.
double leastOf(const std::vector<Run> &runs, double Run::*value)
{
    return std::ranges::min(runs, {}, value).*value;
}

/// Milliseconds of the quickest update from one answer to another, without a view.
double updateTime(const QList<AttendanceRecord> &before, const QList<AttendanceRecord> &after)
{
    std::vector<double> times;
    for (int i = 0; i < 11; ++i) {
        HistoryModel model{DateFormats()};
        model.setRecords(before);
        times.push_back(bench::secondsOf([&] { model.setRecords(after); }) * 1000);
    }
    return std::ranges::min(times);
}

/// Of one answer to another that has the same days in another order, or not all of them.
int updates(const QByteArray &json)
{
    const auto first = decode<QList<AttendanceRecord>>(json);
    auto shuffled = decode<QList<AttendanceRecord>>(json);
    std::ranges::shuffle(shuffled, std::mt19937(1));
    auto gaps = decode<QList<AttendanceRecord>>(json); // every third day is gone
    gaps.removeIf([day = 0](const AttendanceRecord &) mutable { return day++ % 3 == 0; });
    int failed = bench::report("history-shuffle-vs-a-frame", updateTime(first, shuffled) / frameMs, false, 1);
    failed |= bench::report("history-gaps-vs-a-frame", updateTime(first, gaps) / frameMs, false, 1);
    return failed;
}

int compare(const std::vector<Run> &longRuns, const std::vector<Run> &shortRuns)
{
    struct Wait
    {
        const char *name;
        double Run::*time;
    };
    int failed = 0;
    for (const auto &[name, time] :
         {Wait{"history-update-vs-a-frame", &Run::update}, Wait{"history-first-rows-vs-a-frame", &Run::paint},
          Wait{"history-longest-of-load-vs-a-frame", &Run::load},
          Wait{"history-longest-of-reload-vs-a-frame", &Run::reload},
          Wait{"history-slow-scroll-frame-vs-a-frame", &Run::slowFrame}}) {
        std::printf("%.2f ms (ten days: %.2f ms)\n", medianOf(longRuns, time), medianOf(shortRuns, time));
        failed |= bench::report(name, medianOf(longRuns, time) / frameMs, false, 1);
    }
    const double frame = leastOf(longRuns, &Run::frame);
    const double frameOfTen = leastOf(shortRuns, &Run::frame);
    std::printf("%.2f ms (ten days: %.2f ms)\n", frame, frameOfTen);
    failed |= bench::report("history-scroll-frame-vs-ten-days", frame / frameOfTen, false, 1.3);
    const double bytes = medianOf(longRuns, &Run::bytes) - medianOf(shortRuns, &Run::bytes);
    std::printf("%.1f MiB more than for ten days\n", bytes / 1024 / 1024);
    return failed | bench::report("history-memory-vs-12-MiB", bytes / mostMoreBytes, false, 1);
}

} // namespace

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    std::vector<Run> longRuns;
    std::vector<Run> shortRuns;
    for (int round = 0; round < rounds; ++round) {
        const auto first = show(many);
        const auto second = show(few);
        if (!first || !second) {
            std::fprintf(stderr, "the history was not shown\n");
            return 2;
        }
        longRuns.push_back(*first);
        shortRuns.push_back(*second);
    }
    const QByteArray json = answer(many);
    std::printf("%d days: decoded on the client's thread in %.1f ms\n", many,
                bench::secondsOf([&] { decode<QList<AttendanceRecord>>(json); }) * 1000);
    return compare(longRuns, shortRuns) | updates(json);
}
