#include "Rush.h"

#include <iomanip>

namespace clockwell::rush {

namespace {

std::ostream &operator<<(std::ostream &stream, const ProcessFacts &facts)
{
    return stream << facts.residentMebibytes << " MiB resident (" << facts.proportionalMebibytes
                  << " proportional)";
}

void printPlan(std::ostream &stream, const RushOptions &options)
{
    stream << options.phones << " phones in " << options.seconds << " s";
    if (options.signIns > 0)
        stream << ", " << options.signIns << " sign-ins in " << options.signInSeconds << " s";
    if (options.strangerSignIns > 0)
        stream << ", a stranger's " << options.strangerSignIns << " sign-ins a second";
    if (options.idle > 0)
        stream << ", " << options.idle << " idle connections";
    if (options.killAfter > 0)
        stream << ", a kill after " << options.killAfter << " s";
    stream << (options.keepAlive ? ", kept connections" : ", no kept connections");
    if (options.addresses > 0)
        stream << ", " << options.addresses << " network address" << (options.addresses == 1 ? "" : "es");
    else
        stream << ", a network address for each";
    stream << '\n';
}

} // namespace

void Rush::print(std::ostream &stream) const
{
    stream << std::fixed << std::setprecision(1);
    printPlan(stream, m_options);
    stream << "checked in: " << m_figures.checkedIn << " of " << m_people.size() << '\n'
           << "failed: " << m_figures.failedTaps << " taps, " << m_figures.failed()
           << " requests; most taps by one person: " << m_figures.mostTaps << '\n'
           << "signed out: " << m_figures.signedOut() << " by an answer, " << m_figures.signedOutUnanswered
           << " for want of one at start";
    for (const auto &[answer, count] : m_figures.signedOutBy)
        stream << "; " << answer << ": " << count;
    stream << "\nrows: " << m_verdict << '\n';
    m_figures.print(stream);
    if (m_options.idle > 0)
        stream << "idle connections: " << m_observed.idleAtFirst << " open at first, " << m_observed.idleAtEnd
               << " at the end, " << m_idle->closed() << " closed by the server\n";
    if (m_server) {
        stream << "the server's memory: " << m_observed.atStart << " at start";
        if (m_options.idle > 0)
            stream << ", " << m_observed.withIdle << " with the idle connections";
        stream << ", " << m_observed.most << " at most\n";
        stream << "processor time: server " << m_observed.secondsBeforeKill + m_observed.last.processorSeconds
               << " s, ";
    } else {
        stream << "processor time: ";
    }
    stream << "load generator " << ownProcessorSeconds() << " s, in "
           << std::chrono::duration<double>(m_observed.end - m_observed.begin).count() << " s\n";
    if (m_exitStatus != 0)
        stream << "the server's exit status was " << m_exitStatus << '\n';
}

} // namespace clockwell::rush
