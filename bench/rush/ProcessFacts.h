#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <cstddef>

namespace clockwell::rush {

/// What the system says of a process, in MiB and seconds; zeros when it is gone.
struct ProcessFacts
{
    double residentMebibytes = 0;
    double proportionalMebibytes = 0; ///< what it shares is divided among all who share it
    double processorSeconds = 0;
};

ProcessFacts factsOfProcess(pid_t process);

/// The processor time of this process.
double ownProcessorSeconds();

/// Allows this process as many open descriptors, if need be beyond its hard limit, which takes the right to.
/// Returns the limits for a child: the soft one as it was, the hard one as it is now. Throws
/// std::runtime_error that says what to do.
rlimit allowDescriptors(std::size_t count);

} // namespace clockwell::rush
