#include "DescriptorLimit.h"

#include "HttpOptions.h"

#include <spdlog/spdlog.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstddef>

namespace clockwell::server {

namespace {

constexpr std::size_t otherDescriptors = 256;

/// What the limit is then; it is never lowered.
std::size_t raisedDescriptorLimit(std::size_t wanted)
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted)
        return wanted;
    const rlim_t before = limit.rlim_cur;
    limit.rlim_cur = std::min<rlim_t>(wanted, limit.rlim_max);
    return ::setrlimit(RLIMIT_NOFILE, &limit) == 0 ? limit.rlim_cur : before;
}

} // namespace

void makeRoomForConnections(HttpOptions &options)
{
    const std::size_t wanted = options.maxConnections + options.guestConnections + otherDescriptors;
    const std::size_t limit = raisedDescriptorLimit(wanted);
    if (limit >= wanted)
        return;
    const std::size_t fewest = limit / 2; // of a very low limit the other half is for the rest
    const std::size_t kept = options.guestConnections + otherDescriptors;
    const std::size_t connections = limit > kept + fewest ? limit - kept : fewest;
    spdlog::warn(
        "event=fewDescriptors limit={} wanted={} connections={} advice=\"raise the hard limit of open"
        " files of this process\"",
        limit, wanted, connections);
    options.maxConnections = connections;
}

} // namespace clockwell::server
