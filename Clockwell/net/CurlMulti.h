#pragma once

#include <QHash>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <curl/curl.h>

#include <functional>
#include <map>
#include <memory>

namespace clockwell {

/// Transfers and the connections that they share, run by the event loop of the thread that made it. The
/// connections end with it; its transfers have to be removed before.
class CurlMulti final : public QObject
{
public:
    /// At most `hostConnections` connections to one host at a time; 0: as many as are asked for.
    explicit CurlMulti(long hostConnections);
    ~CurlMulti() override;

    /// Starts a transfer; `done` is called when it has ended, from the event loop, and must not remove it.
    void add(CURL *transfer, std::function<void(CURLcode)> done);
    void remove(CURL *transfer);

private:
    // A notifier may have to go in the middle of its own signal, and its socket is closed right afterwards.
    struct DisableNowDeleteLater
    {
        void operator()(QSocketNotifier *notifier) const;
    };
    using Notifier = std::unique_ptr<QSocketNotifier, DisableNowDeleteLater>;
    struct Watch
    {
        Notifier reading;
        Notifier writing;
    };

    static int onSocket(CURL *, curl_socket_t socket, int what, void *self, void *);
    static int onTimer(CURLM *, long milliseconds, void *self);
    void watch(curl_socket_t socket, int what);
    Notifier notifier(curl_socket_t socket, QSocketNotifier::Type type, int event);
    void act(curl_socket_t socket, int event);

    CURLM *const m_multi;
    QTimer m_timer;
    std::map<curl_socket_t, Watch> m_watches;
    QHash<CURL *, std::function<void(CURLcode)>> m_transfers;
};

} // namespace clockwell
