#pragma once

#include "Company.h"
#include "Figures.h"
#include "IdleCrowd.h"
#include "Ledger.h"
#include "Phone.h"
#include "ProcessFacts.h"
#include "RushOptions.h"
#include "ServerChild.h"

#include <boost/asio/io_context.hpp>

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace clockwell::rush {

/// One morning, from the preparation of the database to the verdict, on the calling thread.
class Rush
{
public:
    explicit Rush(RushOptions options);
    ~Rush();
    Rush(const Rush &) = delete;
    Rush &operator=(const Rush &) = delete;

    /// Plays it once. Throws std::exception when it cannot be played.
    void play();

    /// Whether everybody checked in and nobody was signed out, and what was acknowledged is there, once.
    /// Where the server was killed, a phone that found no server at its start may be signed out: the app does
    /// that.
    bool good() const;

    void print(std::ostream &stream) const;

    const Figures &figures() const { return m_figures; }
    const Ledger::Verdict &verdict() const { return m_verdict; }
    const IdleCrowd &idle() const { return *m_idle; }
    unsigned kills() const { return m_kills; }

private:
    /// What is seen from outside.
    struct Observed
    {
        Clock::time_point begin;
        Clock::time_point end;
        ProcessFacts atStart; ///< all of the server that was started
        ProcessFacts withIdle;
        ProcessFacts last;
        ProcessFacts most;
        double secondsBeforeKill = 0; ///< processor time of the server that was killed
        std::size_t idleAtFirst = 0;  ///< open connections
        std::size_t idleAtEnd = 0;
    };

    std::string prepare();
    boost::asio::awaitable<void> conduct();
    boost::asio::awaitable<void> gatherIdle();
    boost::asio::awaitable<void> killServer();
    boost::asio::awaitable<void> watch();
    void sendPeople();
    void noteServer();
    void writeAcknowledged() const;
    std::size_t descriptors() const;
    boost::asio::ip::address_v4 addressOf(std::size_t person) const;
    boost::asio::any_io_executor executor() { return m_io.get_executor(); }
    void spawn(boost::asio::awaitable<void> work);

    const RushOptions m_options;
    boost::asio::io_context m_io{1};
    std::filesystem::path m_folder;
    std::unique_ptr<ServerChild> m_server;
    boost::asio::ip::tcp::endpoint m_endpoint;
    std::vector<Person> m_people;
    Figures m_figures;
    Ledger m_ledger;
    std::mt19937 m_random; // seeded alike each time, so that runs can be compared
    Morning m_morning{m_figures, m_ledger, m_random, std::chrono::seconds{m_options.patience}};
    std::vector<std::unique_ptr<Phone>> m_phones;
    std::unique_ptr<IdleCrowd> m_idle;
    std::exception_ptr m_error;
    std::size_t m_done = 0;
    bool m_isAway = false; // the server was killed and does not answer yet
    unsigned m_kills = 0;
    int m_exitStatus = 0; // of a server that was started
    Ledger::Verdict m_verdict;
    Observed m_observed;
};

} // namespace clockwell::rush
