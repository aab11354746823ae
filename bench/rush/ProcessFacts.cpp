#include "ProcessFacts.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace clockwell::rush {

namespace {

constexpr double kibibytesInMebibyte = 1024;

/// The number behind "NAME:" in a file of /proc, in KiB.
double kibibytes(const std::string &file, const std::string &name)
{
    std::ifstream stream{file};
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with(name + ':'))
            return std::stod(line.substr(name.size() + 1));
    return 0;
}

/// The fields 14 and 15 of /proc/PID/stat; the second one is a name in brackets that may hold anything.
double ticksOf(pid_t process)
{
    std::ifstream stream{"/proc/" + std::to_string(process) + "/stat"};
    std::string line;
    std::getline(stream, line);
    std::istringstream fields{line.substr(line.rfind(')') + 1)};
    std::string skipped;
    for (int field = 3; field < 14; ++field)
        fields >> skipped;
    double user = 0;
    double system = 0;
    fields >> user >> system;
    return user + system;
}

} // namespace

ProcessFacts factsOfProcess(pid_t process)
{
    const std::string folder = "/proc/" + std::to_string(process);
    return {.residentMebibytes = kibibytes(folder + "/status", "VmRSS") / kibibytesInMebibyte,
            .proportionalMebibytes = kibibytes(folder + "/smaps_rollup", "Pss") / kibibytesInMebibyte,
            .processorSeconds = ticksOf(process) / static_cast<double>(::sysconf(_SC_CLK_TCK))};
}

double ownProcessorSeconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](timeval time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

rlimit allowDescriptors(std::size_t count)
{
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    rlimit wanted{std::max<rlim_t>(count, before.rlim_cur), std::max<rlim_t>(count, before.rlim_max)};
    if (::setrlimit(RLIMIT_NOFILE, &wanted) != 0)
        throw std::runtime_error{"This needs " + std::to_string(count) + " open files; the hard limit is " +
                                 std::to_string(before.rlim_max) + " (ulimit -Hn)."};
    return {before.rlim_cur, wanted.rlim_max};
}

} // namespace clockwell::rush
