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

/// Runs transfers, and the connections that they share, on the event loop of the thread that created it. Its
/// destructor closes the connections; remove all transfers before.
class CurlMulti final : public QObject
{
public:
    /// Opens at most `hostConnections` connections to one host at a time; 0: no limit.
    explicit CurlMulti(long hostConnections);
    ~CurlMulti() override;

    /// Starts a transfer. When it has ended, the event loop calls `done`, which must not remove the transfer.
    void add(CURL *transfer, std::function<void(CURLcode)> done);
    void remove(CURL *transfer);

private:
    // A notifier may be removed while it emits its signal, and its socket is closed right afterwards.
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
    void handleEvent(curl_socket_t socket, int event);

    CURLM *const m_multi;
    QTimer m_timer;
    std::map<curl_socket_t, Watch> m_watches;
    QHash<CURL *, std::function<void(CURLcode)>> m_transfers;
};

} // namespace clockwell
