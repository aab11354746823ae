#include "Figures.h"

#include <algorithm>
#include <iomanip>
#include <numeric>
#include <utility>

namespace clockwell::rush {

namespace {

std::string outcomeOf(const Answer &answer)
{
    switch (answer.failure) {
    case Failure::unreachable:
        return "unreachable";
    case Failure::closed:
        return "closed";
    case Failure::timedOut:
        return "timed out";
    case Failure::none:
        break;
    }
    return std::to_string(answer.status);
}

template <class Counts>
std::size_t sum(const Counts &counts)
{
    return std::accumulate(
        counts.begin(), counts.end(), std::size_t{0},
        [](std::size_t total, const auto &entry) { return total + entry.second; });
}

} // namespace

double Times::milliseconds(double share) const
{
    if (m_times.empty())
        return 0;
    auto times = m_times;
    const auto last = static_cast<double>(times.size() - 1);
    const auto at = times.begin() + static_cast<std::ptrdiff_t>(share * last + 0.5);
    std::nth_element(times.begin(), at, times.end());
    return std::chrono::duration<double, std::milli>(*at).count();
}

void Figures::add(Call call, const Answer &answer, Duration time)
{
    CallFigures &figures = m_calls.at(static_cast<std::size_t>(call));
    ++figures.sent;
    if (answer.ok())
        figures.answered.add(time);
    else
        ++figures.others[outcomeOf(answer)];
}

std::size_t Figures::signedOut() const
{
    return sum(signedOutBy);
}

std::size_t Figures::failed() const
{
    std::size_t total = 0;
    for (const Call call : {Call::me, Call::refresh, Call::today, Call::distance, Call::punch, Call::login}) {
        const auto &others = of(call).others;
        const auto expired = call == Call::me ? others.find("401") : others.end();
        total += sum(others) - (expired == others.end() ? 0 : expired->second);
    }
    return total;
}

void Figures::print(std::ostream &stream) const
{
    stream << std::fixed << std::setprecision(1) << std::left << std::setw(18) << "call" << std::right
           << std::setw(8) << "sent" << std::setw(8) << "2xx" << std::setw(10) << "p50 ms" << std::setw(10)
           << "p99 ms" << std::setw(10) << "most ms"
           << "  others\n";
    for (std::size_t i = 0; i < callCount; ++i) {
        const CallFigures &call = m_calls.at(i);
        if (call.sent == 0)
            continue;
        stream << std::left << std::setw(18) << callFacts.at(i).name << std::right << std::setw(8)
               << call.sent << std::setw(8) << call.answered.count();
        for (const double share : {0.5, 0.99, 1.0})
            stream << std::setw(10) << call.answered.milliseconds(share);
        const char *separator = "  ";
        for (const auto &[outcome, count] : call.others)
            stream << std::exchange(separator, ", ") << outcome << ": " << count;
        stream << '\n';
    }
    if (untilAcknowledged.count() > 0)
        stream << "from a person's first tap to the acknowledgement: p50 "
               << untilAcknowledged.milliseconds(0.5) << " ms, p99 " << untilAcknowledged.milliseconds(0.99)
               << " ms, most " << untilAcknowledged.milliseconds(1) << " ms\n";
}

} // namespace clockwell::rush
