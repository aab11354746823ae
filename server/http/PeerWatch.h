#pragma once

#include <mutex>

namespace clockwell::server {

/// Tells a worker whether the client of a request is still there. A socket's number is given to another one
/// as soon as it is closed; so the I/O thread says when it is about to close it.
class PeerWatch
{
public:
    /// `descriptor` is a connected socket.
    explicit PeerWatch(int descriptor) : m_descriptor(descriptor) {}
    PeerWatch(const PeerWatch &) = delete;
    PeerWatch &operator=(const PeerWatch &) = delete;

    /// To be called before the socket is closed; gone() is true from then on.
    void release();

    /// The client has closed the connection or its half of it: TCP does not tell the two apart. What it sent
    /// before, read or not, changes nothing. Any thread.
    bool gone() const;

private:
    mutable std::mutex m_lock;
    int m_descriptor; // guarded by m_lock; -1 once released
};

} // namespace clockwell::server
