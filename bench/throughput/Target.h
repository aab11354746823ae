#pragma once

#include "Company.h"
#include "KeptClient.h"
#include "ThroughputOptions.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace clockwell::bench {

/// Servers, and people in their database who are signed in, have some weeks behind them, and have not punched
/// today. Throws std::exception.
class Target
{
public:
    /// Enough people for so many punches.
    Target(TargetOptions options, int lanes, int punches);

    /// Each by another person, over all lanes at once; what is refused is sent again at once. Throws
    /// std::runtime_error when one is refused too often.
    void punch(int count);

    /// Each lane for a person of its own. Throws std::runtime_error unless each was answered.
    void askForToday(int count);

    /// Today's punches of the target's people in the database.
    std::size_t rows();

    int refused() const { return m_refused; } ///< punches, so far

    const std::string &label() const { return m_options.label; }
    const std::string &tokenOf(int person) const;

    std::vector<double> punchesASecond;
    std::vector<double> todaysASecond;

private:
    void checkIn(server::bench::KeptClient &client, int person);
    std::uint16_t portOf(int lane) const;

    TargetOptions m_options;
    int m_lanes;
    int m_next = 0; // who punches next
    std::atomic<int> m_refused = 0;
    std::unique_ptr<server::Database> m_database;
    std::vector<rush::Person> m_people;
};

} // namespace clockwell::bench
