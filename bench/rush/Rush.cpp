#include "Rush.h"

#include "Awaiting.h"
#include "ServerUrl.h"
#include "Stranger.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/signal_set.hpp>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace clockwell::rush {

namespace asio = boost::asio;
using asio::awaitable;
using namespace std::chrono_literals;

namespace {

constexpr auto away = 1s; // from the kill to the start
constexpr auto watchPause = 2s;
constexpr unsigned watchesAReport = 5;
constexpr std::size_t spareDescriptors = 60;

// Each of them a network of this machine.
constexpr asio::ip::address_v4::uint_type firstPerson = 0x7f100001;    // 127.16.0.1
constexpr asio::ip::address_v4::uint_type firstIdle = 0x7f800001;      // 127.128.0.1
constexpr asio::ip::address_v4::uint_type strangersPlace = 0x7f630001; // 127.99.0.1

std::filesystem::path newFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "clockwell-rush-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        throw std::system_error{errno, std::generic_category(), "No temporary folder"};
    return name;
}

/// With nothing of an earlier run in it.
std::filesystem::path emptied(const std::filesystem::path &folder)
{
    std::filesystem::create_directories(folder);
    for (const auto &entry : std::filesystem::directory_iterator{folder})
        if (entry.path().filename().string().starts_with("rush."))
            std::filesystem::remove_all(entry.path());
    return std::filesystem::absolute(folder);
}

} // namespace

Rush::Rush(RushOptions options) : m_options(std::move(options)) {}

Rush::~Rush()
{
    m_server.reset();
    std::error_code ignored;
    if (!m_folder.empty() && m_options.folder.empty())
        std::filesystem::remove_all(m_folder, ignored);
}

/// Makes the folder and the database, or adds to the one of the server that runs; the database's file.
std::string Rush::prepare()
{
    const rlimit childDescriptors = allowDescriptors(descriptors());
    std::string database = m_options.database;
    if (m_options.server.empty()) {
        m_folder = m_options.folder.empty() ? newFolder() : emptied(m_options.folder);
        m_server = std::make_unique<ServerChild>(m_folder, m_options.serveOptions, childDescriptors);
        database = m_server->database();
    } else {
        m_endpoint = parseServerUrl(m_options.server).value();
    }
    server::Database prepared{database};
    m_people = addCompany(prepared, m_options.phones, m_options.signIns);
    return database;
}

void Rush::play()
{
    const std::string database = prepare();
    asio::signal_set signals(m_io, SIGINT, SIGTERM);
    signals.async_wait([this](boost::system::error_code error, int) {
        if (!error) {
            m_error = std::make_exception_ptr(std::runtime_error{"interrupted"});
            m_io.stop();
        }
    });
    spawn(conduct());
    m_io.run();
    if (m_error)
        std::rethrow_exception(m_error);
    m_exitStatus = m_server ? m_server->terminate() : 0;
    server::Database afterwards{database};
    m_verdict = m_ledger.compare(afterwards, m_people);
    writeAcknowledged();
}

void Rush::writeAcknowledged() const
{
    if (m_options.acknowledged.empty())
        return;
    std::ofstream file{m_options.acknowledged};
    m_ledger.write(file);
    if (!file.flush())
        throw std::runtime_error{m_options.acknowledged + " cannot be written"};
}

void Rush::spawn(awaitable<void> work)
{
    asio::co_spawn(
        m_io, std::move(work),
        [this](std::exception_ptr error) {
            if (!error)
                return;
            m_error = error;
            m_io.stop();
        });
}

awaitable<void> Rush::conduct()
{
    if (m_server) {
        co_await m_server->start(executor());
        m_endpoint = m_server->endpoint();
        m_observed.atStart = factsOfProcess(m_server->process());
    }
    m_observed.begin = Clock::now();
    spawn(watch());
    m_idle = std::make_unique<IdleCrowd>(executor(), m_endpoint);
    co_await gatherIdle();
    Stranger stranger{executor(), {m_endpoint, asio::ip::address_v4{strangersPlace}}, m_figures, m_people};
    if (m_options.strangerSignIns > 0)
        spawn(stranger.keepTrying(m_options.strangerSignIns));
    if (m_options.killAfter > 0)
        spawn(killServer());
    sendPeople();
    const auto least = Clock::now() + std::chrono::seconds{m_people.empty() ? m_options.seconds : 0};
    while (m_done < m_phones.size() || Clock::now() < least || m_isAway)
        co_await sleepFor(executor(), 20ms);
    noteServer();
    m_observed.end = Clock::now();
    m_observed.idleAtEnd = m_idle->open();
    m_io.stop();
}

awaitable<void> Rush::gatherIdle()
{
    if (m_options.idle == 0)
        co_return;
    co_await m_idle->gather(m_options.idle, asio::ip::address_v4{firstIdle});
    if (m_server)
        m_observed.withIdle = factsOfProcess(m_server->process());
    m_observed.idleAtFirst = m_idle->open();
}

void Rush::sendPeople()
{
    for (std::size_t i = 0; i < m_people.size(); ++i) {
        const bool hasSession = i < m_options.phones;
        const std::chrono::seconds within{hasSession ? m_options.seconds : m_options.signInSeconds};
        std::uniform_int_distribution<long long> moment(0, std::chrono::milliseconds{within}.count());
        m_phones.push_back(std::make_unique<Phone>(
            executor(), m_people[i], Network{m_endpoint, addressOf(i), m_options.keepAlive}, m_morning));
        asio::co_spawn(m_io, m_phones.back()->arrive(std::chrono::milliseconds{moment(m_random)}),
                       [this](std::exception_ptr error) {
                           ++m_done;
                           if (!error)
                               return;
                           m_error = error;
                           m_io.stop();
                       });
    }
}

asio::ip::address_v4 Rush::addressOf(std::size_t person) const
{
    const std::size_t place = m_options.addresses == 0 ? person : person % m_options.addresses;
    return asio::ip::address_v4{firstPerson + static_cast<asio::ip::address_v4::uint_type>(place)};
}

std::size_t Rush::descriptors() const
{
    // A phone has one connection for its GETs and one for a POST.
    const std::size_t people = m_options.phones + m_options.signIns;
    return 2 * people + m_options.idle + (m_options.strangerSignIns > 0 ? Stranger::mostAtOnce : 0) +
           spareDescriptors;
}

awaitable<void> Rush::killServer()
{
    co_await sleepFor(executor(), std::chrono::seconds{m_options.killAfter});
    noteServer();
    m_observed.secondsBeforeKill += m_observed.last.processorSeconds;
    m_isAway = true;
    m_server->kill();
    ++m_kills;
    co_await sleepFor(executor(), away);
    co_await m_server->start(executor());
    m_isAway = false;
}

awaitable<void> Rush::watch()
{
    for (unsigned count = 1;; ++count) {
        co_await sleepFor(executor(), watchPause);
        noteServer();
        if (m_server && !m_isAway && m_server->hasEnded())
            throw std::runtime_error{"The server ended by itself; its log is " + m_server->log()};
        if (count % watchesAReport == 0)
            std::fprintf(stderr, "%4lld s: %zu arrived, %zu checked in\n",
                         static_cast<long long>(
                             std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_observed.begin)
                                 .count()),
                         m_figures.arrived, m_figures.checkedIn);
    }
}

void Rush::noteServer()
{
    if (!m_server || m_isAway)
        return;
    m_observed.last = factsOfProcess(m_server->process());
    m_observed.most.residentMebibytes =
        std::max(m_observed.most.residentMebibytes, m_observed.last.residentMebibytes);
    m_observed.most.proportionalMebibytes =
        std::max(m_observed.most.proportionalMebibytes, m_observed.last.proportionalMebibytes);
}

bool Rush::good() const
{
    const bool mayBeUnanswered = m_kills > 0 || m_options.interrupted;
    if (m_options.flawless && m_figures.failed() > 0)
        return false;
    if (m_options.mostRepeats && m_figures.mostTaps > *m_options.mostRepeats + 1)
        return false;
    return m_figures.checkedIn == m_people.size() && m_figures.signedOut() == 0 &&
           (mayBeUnanswered || m_figures.signedOutUnanswered == 0) && m_verdict.good() && m_exitStatus == 0;
}

} // namespace clockwell::rush
