#include "server/log/LogWriter.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string>

namespace clockwell::server {

namespace {

constexpr int pollMilliseconds = 100;
constexpr int closed = -1;

/// Pipes and terminals are opened again, for only a description of one's own may be set not to block: the
/// other one is shared with whoever started this process. Negative when that is not possible.
int openAgain(int descriptor)
{
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    return ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

} // namespace

LogWriter::LogWriter(int descriptor) : m_descriptor(descriptor)
{
    struct stat facts
    {};
    if (::fstat(descriptor, &facts) != 0) {
        m_descriptor = closed; // a connection may get its number
        m_neverBlocks = true;
        return;
    }
    m_isSocket = S_ISSOCK(facts.st_mode);
    const int own = S_ISFIFO(facts.st_mode) || S_ISCHR(facts.st_mode) ? openAgain(descriptor) : -1;
    m_isOwn = own >= 0;
    m_neverBlocks = m_isOwn || m_isSocket || S_ISREG(facts.st_mode);
    m_descriptor = m_isOwn ? own : descriptor;
}

LogWriter::~LogWriter()
{
    if (m_isOwn)
        ::close(m_descriptor);
}

bool LogWriter::write(std::string_view line)
{
    if (m_isTorn && !writeAll("\n"))
        return false;
    m_isTorn = false;
    return writeAll(line);
}

bool LogWriter::writeAll(std::string_view text)
{
    // A pipe that is ready has room for PIPE_BUF bytes: a descriptor that could block does not.
    bool isReady = m_neverBlocks || waitForRoom();
    while (!text.empty() && isReady) {
        const std::size_t part = std::min<std::size_t>(text.size(), PIPE_BUF);
        const auto count = m_isSocket ? ::send(m_descriptor, text.data(), part, MSG_DONTWAIT | MSG_NOSIGNAL)
                                      : ::write(m_descriptor, text.data(), part);
        if (count < 0 && errno != EAGAIN && errno != EINTR)
            break;
        if (count > 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
            m_isTorn = !text.empty();
        }
        isReady = text.empty() || waitForRoom();
    }
    return text.empty();
}

/// True also when writing will fail: then the failure says why.
bool LogWriter::waitForRoom() const
{
    while (true) {
        const bool patient = std::chrono::steady_clock::now() < m_end.load();
        pollfd state{m_descriptor, POLLOUT, 0};
        const int ready = ::poll(&state, 1, patient ? pollMilliseconds : 0);
        if (ready > 0)
            return true;
        if (!patient || (ready < 0 && errno != EINTR))
            return false;
    }
}

} // namespace clockwell::server
