#include "net/CurlMulti.h"

namespace clockwell {

namespace {

CURLM *newMulti()
{
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT); // once per process
    if (initialised != CURLE_OK)
        qFatal("libcurl: %s", curl_easy_strerror(initialised));
    return curl_multi_init();
}

} // namespace

CurlMulti::CurlMulti(long hostConnections) : m_multi(newMulti())
{
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, &CurlMulti::onSocket);
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, &CurlMulti::onTimer);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_MAX_HOST_CONNECTIONS, hostConnections);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { handleEvent(CURL_SOCKET_TIMEOUT, 0); });
}

CurlMulti::~CurlMulti()
{
    curl_multi_cleanup(m_multi);
}

void CurlMulti::add(CURL *transfer, std::function<void(CURLcode)> done)
{
    m_transfers[transfer] = std::move(done);
    curl_multi_add_handle(m_multi, transfer);
}

void CurlMulti::remove(CURL *transfer)
{
    curl_multi_remove_handle(m_multi, transfer);
    m_transfers.remove(transfer);
}

void CurlMulti::DisableNowDeleteLater::operator()(QSocketNotifier *notifier) const
{
    notifier->setEnabled(false);
    notifier->deleteLater();
}

int CurlMulti::onSocket(CURL *, curl_socket_t socket, int what, void *self, void *)
{
    static_cast<CurlMulti *>(self)->watch(socket, what);
    return 0;
}

int CurlMulti::onTimer(CURLM *, long milliseconds, void *self)
{
    QTimer &timer = static_cast<CurlMulti *>(self)->m_timer;
    if (milliseconds < 0)
        timer.stop();
    else
        timer.start(std::chrono::milliseconds(milliseconds));
    return 0;
}

void CurlMulti::watch(curl_socket_t socket, int what)
{
    if (what == CURL_POLL_REMOVE) {
        m_watches.erase(socket);
        return;
    }
    Watch &watch = m_watches[socket];
    if (!watch.reading) {
        watch.reading = notifier(socket, QSocketNotifier::Read, CURL_CSELECT_IN);
        watch.writing = notifier(socket, QSocketNotifier::Write, CURL_CSELECT_OUT);
    }
    watch.reading->setEnabled(what & CURL_POLL_IN);
    watch.writing->setEnabled(what & CURL_POLL_OUT);
}

CurlMulti::Notifier CurlMulti::notifier(curl_socket_t socket, QSocketNotifier::Type type, int event)
{
    Notifier created(new QSocketNotifier(type));
    created->setSocket(socket);
    connect(created.get(), &QSocketNotifier::activated, this,
            [this, socket, event] { handleEvent(socket, event); });
    return created;
}

void CurlMulti::handleEvent(curl_socket_t socket, int event)
{
    int running = 0;
    curl_multi_socket_action(m_multi, socket, event, &running);
    int left = 0;
    while (const CURLMsg *message = curl_multi_info_read(m_multi, &left))
        if (const auto done = m_transfers.value(message->easy_handle))
            done(message->data.result);
}

} // namespace clockwell
