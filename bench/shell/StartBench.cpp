#include "Ratio.h"

#include <QCoreApplication>
#include <QProcess>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

namespace {

using clockwell::bench::median;
using clockwell::bench::report;

const int rounds = clockwell::bench::roundsOf(21);
constexpr int startLimitMs = 20'000;

struct Start
{
    double processor = 0; // microseconds
    double memory = 0;    // kilobytes
};

std::optional<Start> start(const char *program)
{
    QProcess process;
    process.start(QString::fromLocal8Bit(program), QStringList());
    if (!process.waitForFinished(startLimitMs) || process.exitCode() != 0)
        return std::nullopt;
    const auto words = process.readAllStandardOutput().simplified().split(' ');
    return Start{words.value(0).toDouble(), words.value(1).toDouble()};
}

} // namespace

// The two programs take turns, so that a machine that speeds up or slows down does so for both.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    std::vector<double> appProcessor;
    std::vector<double> appMemory;
    std::vector<double> bareProcessor;
    std::vector<double> bareMemory;
    for (int round = -1; round < rounds; ++round) { // the first one warms the caches up
        const auto app = start(START_APP);
        const auto bare = start(START_BARE);
        if (!app || !bare) {
            std::fprintf(stderr, "%s did not show its first frame\n", app ? START_BARE : START_APP);
            return 1;
        }
        if (round < 0)
            continue;
        appProcessor.push_back(app->processor);
        appMemory.push_back(app->memory);
        bareProcessor.push_back(bare->processor);
        bareMemory.push_back(bare->memory);
    }
    std::printf("app %.1f ms, %.1f MB; bare window %.1f ms, %.1f MB (medians of %d)\n",
                median(appProcessor) / 1000, median(appMemory) / 1024, median(bareProcessor) / 1000,
                median(bareMemory) / 1024, rounds);
    const int slow = report("start-processor-time", median(appProcessor) / median(bareProcessor), false, 1.8);
    const int large = report("start-memory", median(appMemory) / median(bareMemory), false, 1.3);
    return slow | large;
}
