#pragma once

#include "TempFolder.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

namespace clockwell::server::test {

/// A named pipe for a program's standard error, with a reader that can pause, go away and come back.
class LogPipe
{
public:
    LogPipe()
    {
        if (::mkfifo(path().c_str(), 0600) != 0)
            throw std::runtime_error{"no pipe"};
        open();
    }
    ~LogPipe() { close(); }
    LogPipe(const LogPipe &) = delete;
    LogPipe &operator=(const LogPipe &) = delete;

    std::string path() const { return m_folder.file("log"); }

    /// With room for so many bytes, of which the system makes whole pages.
    void open(int bytes = 4096)
    {
        m_reader = ::open(path().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (m_reader < 0 || ::fcntl(m_reader, F_SETPIPE_SZ, bytes) < 0)
            throw std::runtime_error{"no reader"};
    }
    void close()
    {
        ::close(m_reader);
        m_reader = -1;
    }

    /// Reads until `enough` likes all that was read since the start, at most a minute; returns it.
    const std::string &readUntil(const std::function<bool(const std::string &)> &enough)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes{1};
        while (!enough(m_text) && std::chrono::steady_clock::now() < end) {
            char part[4096];
            ::usleep(5000);
            for (auto count = ::read(m_reader, part, sizeof part); count > 0;
                 count = ::read(m_reader, part, sizeof part))
                m_text.append(part, static_cast<std::size_t>(count));
        }
        return m_text;
    }

private:
    TempFolder m_folder;
    int m_reader = -1;
    std::string m_text;
};

} // namespace clockwell::server::test
