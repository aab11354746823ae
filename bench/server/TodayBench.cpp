#include "BareServer.h"
#include "BenchCompany.h"
#include "KeptClient.h"
#include "Ratio.h"
#include "ServedApplication.h"

#include <atomic>
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
constexpr int connections = 8;
constexpr int requestsAConnection = 500;
constexpr int requestsARound = connections * requestsAConnection;
constexpr double leastRatio = 0.2;

/// Each connection asks for the day of its own employee; how many answers had the expected length.
int askOnAll(std::uint16_t port, const std::vector<std::string> &tokens, std::size_t length)
{
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    threads.reserve(tokens.size());
    for (const std::string &token : tokens) {
        threads.emplace_back([&] {
            KeptClient client(port);
            for (int i = 0; i < requestsAConnection; ++i)
                right += client.today(token).size() == length ? 1 : 0;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    return right;
}

int run(const std::filesystem::path &directory)
{
    Database database((directory / "server.db").string());
    const auto tokens = signIn(database, connections);
    Settings settings;
    settings.accounts.perMinute = 0; // each connection stands for many people
    ServedApplication http(database, settings);
    const std::string body = KeptClient(http.port()).today(tokens.front());
    const BareServer bare(body);

    std::vector<double> served;
    std::vector<double> answered;
    int right = 0;
    for (int round = 0; round < rounds; ++round) { // in turns, so that a busy machine is busy for both
        answered.push_back(perSecond(
            requestsARound, [&] { right += askOnAll(bare.port(), tokens, body.size()); }));
        served.push_back(
            perSecond(requestsARound, [&] { right += askOnAll(http.port(), tokens, body.size()); }));
    }
    http.stop();
    if (body.empty() || right != 2 * rounds * requestsARound) {
        std::fprintf(stderr, "%d of %d answers were right\n", right, 2 * rounds * requestsARound);
        return 1;
    }
    std::printf("today %.0f a second over %d connections; bare Beast %.0f (medians of %d)\n", median(served),
                connections, median(answered), rounds);
    return clockwell::bench::report("today-a-second", median(served) / median(answered), true, leastRatio);
}

} // namespace

int main()
{
    return runInNewFolder("clockwell-bench-today", run);
}
