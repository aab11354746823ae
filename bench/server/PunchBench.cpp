#include "BareCommits.h"
#include "BenchCompany.h"
#include "KeptClient.h"
#include "Ratio.h"
#include "ServedApplication.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <thread>
#include <vector>

namespace {

using namespace clockwell::server;
using namespace clockwell::server::bench;
using clockwell::bench::median;
using clockwell::bench::perSecond;

const int rounds = clockwell::bench::roundsOf(7);
constexpr int punchesARound = 240;
constexpr int connections = 8;
constexpr double leastRatio = 0.25;

/// Lets this many connections at once send the punches from `first` on; how many were recorded.
int punch(std::uint16_t port, const std::vector<std::string> &tokens, int first, int lanes)
{
    std::atomic<int> next = first;
    std::atomic<int> recorded = 0;
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(lanes));
    for (int lane = 0; lane < lanes; ++lane) {
        threads.emplace_back([&] {
            KeptClient client(port);
            for (int index = next++; index < first + punchesARound; index = next++)
                recorded += client.checkIn(tokens[static_cast<std::size_t>(index)], "device") ? 1 : 0;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    return recorded;
}

int run(const std::filesystem::path &directory)
{
    Database database((directory / "server.db").string());
    const auto tokens = signIn(database, (rounds + 1) * punchesARound);
    ServedApplication http(database);
    BareCommits bare((directory / "bare.db").string());

    std::vector<double> served;
    std::vector<double> committed;
    int recorded = 0;
    for (int round = 0; round < rounds; ++round) { // in turns, so that a busy disk is busy for both
        committed.push_back(perSecond(
            punchesARound, [&] { bare.commit(punchesARound); }));
        served.push_back(perSecond(punchesARound, [&] {
            recorded += punch(http.port(), tokens, round * punchesARound, connections);
        }));
    }
    const double single =
        perSecond(punchesARound, [&] { recorded += punch(http.port(), tokens, rounds * punchesARound, 1); });
    http.stop();
    const auto rows = database.read([](Connection &connection) {
        return connection.value<long long>(
            "SELECT COUNT(*) FROM punches WHERE attendance_id IN (SELECT id FROM"
            " attendance WHERE employee_id LIKE 'bench-%')");
    });
    if (recorded != (rounds + 1) * punchesARound || rows != recorded) {
        std::fprintf(stderr, "%d punches were acknowledged, %lld recorded\n", recorded, rows);
        return 1;
    }
    const double ratio = median(served) / median(committed);
    std::printf(
        "punches %.0f a second over %d connections, %.0f over one; bare commits %.0f (medians of %d)\n",
        median(served), connections, single, median(committed), rounds);
    return clockwell::bench::report("punches-a-second", ratio, true, leastRatio);
}

} // namespace

// Both databases are on the same disk.
int main()
{
    return runInNewFolder("clockwell-bench-punch", run);
}
