#include "BareCommits.h"
#include "BarePostgres.h"
#include "Lanes.h"
#include "Ratio.h"
#include "Target.h"

#include <spdlog/spdlog.h>

#include <cstdio>
#include <exception>
#include <list>

namespace {

using namespace clockwell::bench;
using clockwell::server::bench::BareCommits;

/// What commits cost with nothing around them, in commits a second.
struct Bare
{
    std::vector<double> sqlite;
    std::vector<double> postgres; // over as many connections as the servers are asked
    std::vector<double> single;   // of PostgreSQL, over one connection
};

/// In turns, so that whatever else the machine does meets all.
void measure(const ThroughputOptions &options, std::list<Target> &targets, Bare &bare)
{
    BareCommits sqlite{options.sqlite};
    BarePostgres single{options.postgres};
    std::vector<BarePostgres> many;
    for (int lane = 0; lane < options.lanes; ++lane)
        many.emplace_back(options.postgres);
    const int share = options.punches / options.lanes;
    for (int round = 0; round < options.rounds; ++round) {
        bare.sqlite.push_back(perSecond(
            options.punches, [&] { sqlite.commit(options.punches); }));
        bare.single.push_back(perSecond(
            options.punches, [&] { single.commit(options.punches); }));
        bare.postgres.push_back(perSecond(share * options.lanes, [&] {
            onAllLanes(options.lanes,
                       [&](int lane) { many.at(static_cast<std::size_t>(lane)).commit(share); });
        }));
        for (Target &target : targets) {
            target.punchesASecond.push_back(perSecond(
                options.punches, [&] { target.punch(options.punches); }));
            target.todaysASecond.push_back(
                perSecond(options.todays, [&] { target.askForToday(options.todays); }));
        }
    }
}

void printLine(const std::string &label, double rate, double sqlite, double postgres)
{
    std::printf("%-52s %8.0f %10.2f %10.2f\n", label.c_str(), rate, rate / sqlite, rate / postgres);
}

void print(const ThroughputOptions &options, const std::list<Target> &targets, const Bare &bare)
{
    const double sqlite = median(bare.sqlite);
    const double postgres = median(bare.postgres);
    const std::string lanes = std::to_string(options.lanes) + " connections";
    std::printf("medians of %d rounds, %s; in the last columns as multiples of bare commits\n",
                options.rounds, lanes.c_str());
    std::printf("%-52s %8s %10s %10s\n", "", "a second", "SQLite's", "PostgreSQL's");
    printLine("bare commits, SQLite, 1 connection", sqlite, sqlite, postgres);
    printLine("bare commits, PostgreSQL, 1 connection", median(bare.single), sqlite, postgres);
    printLine("bare commits, PostgreSQL, " + lanes, postgres, sqlite, postgres);
    for (const Target &target : targets)
        printLine("punches: " + target.label(), median(target.punchesASecond), sqlite, postgres);
    for (const Target &target : targets)
        printLine("today: " + target.label(), median(target.todaysASecond), sqlite, postgres);
    for (const Target &target : targets)
        if (target.refused() > 0)
            std::printf("%s: %d punches were refused at first\n", target.label().c_str(), target.refused());
}

/// Whether each acknowledged punch is in the database.
bool allThere(const ThroughputOptions &options, std::list<Target> &targets)
{
    const auto sent = static_cast<std::size_t>(options.rounds * options.punches);
    bool right = true;
    for (Target &target : targets) {
        const std::size_t rows = target.rows();
        right = right && rows == sent;
        if (rows != sent)
            std::fprintf(stderr, "%s: %zu acknowledged, %zu rows\n", target.label().c_str(), sent, rows);
    }
    return right;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        spdlog::set_level(spdlog::level::warn); // of the server's library
        const ThroughputOptions options = parseThroughputOptions(argc, argv);
        std::list<Target> targets;
        for (const TargetOptions &one : options.targets)
            targets.emplace_back(one, options.lanes, options.rounds * options.punches);
        Bare bare;
        measure(options, targets, bare);
        print(options, targets, bare);
        return allThere(options, targets) ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "throughput: %s\n", error.what());
        return 1;
    }
}
