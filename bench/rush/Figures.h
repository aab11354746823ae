#pragma once

#include "Answer.h"
#include "Call.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace clockwell::rush {

using Duration = std::chrono::steady_clock::duration;

/// Times of one kind.
class Times
{
public:
    void add(Duration time) { m_times.push_back(time); }
    std::size_t count() const { return m_times.size(); }
    /// In milliseconds the time that this share (0 to 1) of all does not exceed; 0 when there are none.
    double milliseconds(double share) const;

private:
    std::vector<Duration> m_times;
};

/// What became of all requests of one kind.
struct CallFigures
{
    std::size_t sent = 0;
    Times answered;                            ///< of those answered with 2xx
    std::map<std::string, std::size_t> others; ///< by status or kind of failure
};

/// What is counted during a rush.
class Figures
{
public:
    void add(Call call, const Answer &answer, Duration time);

    const CallFigures &of(Call call) const { return m_calls.at(static_cast<std::size_t>(call)); }
    void print(std::ostream &stream) const;

    std::size_t arrived = 0;
    std::size_t checkedIn = 0;
    std::size_t mostTaps = 0;   ///< on the button, by one person
    std::size_t failedTaps = 0; ///< on the button or the sign-in's, that showed the person an error
    std::map<std::string, std::size_t> signedOutBy; ///< an answer, e.g. "refresh 503"
    std::size_t signedOutUnanswered = 0;            ///< at start, where no answer is a sign-out, too
    Times untilAcknowledged;                        ///< from a person's first tap on the button

    std::size_t signedOut() const; ///< by an answer

    /// Requests that got no answer or another than 2xx, but for a stranger's and for those that show that a
    /// token has expired.
    std::size_t failed() const;

private:
    std::array<CallFigures, callCount> m_calls;
};

} // namespace clockwell::rush
