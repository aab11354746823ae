#include "net/HttpExchange.h"

#include "net/SystemProxy.h"

namespace clockwell {

namespace {

TransportError::Kind kindOf(CURLcode result)
{
    using Kind = TransportError::Kind;
    switch (result) {
    case CURLE_COULDNT_CONNECT:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
        return Kind::CannotConnect;
    case CURLE_COULDNT_RESOLVE_HOST:
        return Kind::HostNotFound;
    case CURLE_OPERATION_TIMEDOUT:
        return Kind::TimedOut;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
        return Kind::UntrustedCertificate;
    case CURLE_FILESIZE_EXCEEDED:
        return Kind::ReplyTooLarge;
    case CURLE_UNSUPPORTED_PROTOCOL: // for example bytes without an HTTP header
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
        return Kind::Broken;
    default:
        return Kind::ConnectionLost;
    }
}

} // namespace

HttpExchange::HttpExchange(std::shared_ptr<CurlMulti> connections, HttpRequest request,
                           const HttpOptions &options)
    : m_options(options),
      m_request(std::move(request)),
      m_connections(std::move(connections)),
      m_transfer(curl_easy_init())
{
    setRequestOptions();
    setConnectionOptions();
    setCallbacks();
    startTimers();
    m_connections->add(m_transfer, [this](CURLcode result) { complete(result); });
}

HttpExchange::~HttpExchange()
{
    m_connections->remove(m_transfer);
    curl_easy_cleanup(m_transfer);
    curl_slist_free_all(m_headers);
}

template <class Value>
void HttpExchange::set(CURLoption option, Value value)
{
    curl_easy_setopt(m_transfer, option, value);
}

void HttpExchange::setRequestOptions()
{
    set(CURLOPT_URL, m_request.url.toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment).constData());
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_USERAGENT, "Clockwell");
    set(CURLOPT_ACCEPT_ENCODING, ""); // all encodings that libcurl can decompress
    // A header name without a value keeps libcurl from adding its default header.
    for (const char *own : {"Accept:", "Content-Type:", "Expect:"})
        m_headers = curl_slist_append(m_headers, own);
    for (const QByteArray &header : m_request.headers)
        m_headers = curl_slist_append(m_headers, header.constData());
    set(CURLOPT_HTTPHEADER, m_headers);
    if (!m_request.body)
        return;
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDS, m_request.body->constData());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_request.body->size()));
    // A kept-alive connection may be broken without notice, and libcurl then resends the request on a new
    // one. A POST must not be sent twice, so it always gets a new connection.
    set(CURLOPT_FRESH_CONNECT, 1L);
    set(CURLOPT_FORBID_REUSE, 1L);
}

void HttpExchange::setConnectionOptions()
{
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    // Only with TLS (ALPN) is it known before the first reply whether a connection can be shared and is worth
    // waiting for.
    set(CURLOPT_PIPEWAIT, m_request.url.scheme() == QLatin1StringView("https") ? 1L : 0L);
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (!m_options.certificateFile.isEmpty())
        set(CURLOPT_CAINFO, m_options.certificateFile.constData());
    // libcurl caches the certificates of a file for later connections, but not if a directory is set as well.
    set(CURLOPT_CAPATH, static_cast<const char *>(nullptr));
    set(CURLOPT_PROXY, systemProxy(m_request.url).constData());
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // does not wait for a DNS lookup in progress
}

void HttpExchange::setCallbacks()
{
    set(CURLOPT_HEADERFUNCTION, &HttpExchange::onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &HttpExchange::onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_XFERINFOFUNCTION, &HttpExchange::onProgress);
    set(CURLOPT_XFERINFODATA, this);
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_PREREQFUNCTION, &HttpExchange::onConnected);
    set(CURLOPT_PREREQDATA, this);
    // If Content-Length exceeds the limit, the transfer fails before the body is received.
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(m_options.replyLimit));
}

void HttpExchange::startTimers()
{
    for (QTimer *timer : {&m_idle, &m_total}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer); // the default type may fire 5 % early
        QObject::connect(timer, &QTimer::timeout, timer, [this] { end(TransportError::Kind::TimedOut); });
    }
    m_idle.start(m_options.idleLimit);
    m_total.start(m_options.totalLimit);
}

HttpReply HttpExchange::takeReply()
{
    return {status(), std::move(m_body)};
}

std::optional<int> HttpExchange::status() const
{
    long status = 0;
    curl_easy_getinfo(m_transfer, CURLINFO_RESPONSE_CODE, &status);
    return status == 0 ? std::nullopt : std::optional(static_cast<int>(status));
}

size_t HttpExchange::onHeader(char *line, size_t, size_t length, void *self) noexcept
{
    auto &exchange = *static_cast<HttpExchange *>(self);
    const QByteArrayView text = QByteArrayView(line, static_cast<qsizetype>(length)).trimmed();
    // Each interim reply has a header section of its own; trailers after the body belong to none.
    if (text.startsWith("HTTP/"))
        exchange.m_headComplete = false;
    else if (text.isEmpty())
        exchange.m_headComplete = true;
    exchange.restartIdleTimer();
    return length;
}

size_t HttpExchange::onBody(char *bytes, size_t, size_t count, void *self) noexcept
{
    auto &exchange = *static_cast<HttpExchange *>(self);
    if (static_cast<qint64>(count) > exchange.m_options.replyLimit - exchange.m_body.size()) {
        exchange.end(TransportError::Kind::ReplyTooLarge);
        return 0;
    }
    exchange.m_body.append(bytes, static_cast<qsizetype>(count));
    return count;
}

int HttpExchange::onProgress(void *self, curl_off_t, curl_off_t received, curl_off_t,
                             curl_off_t sent) noexcept
{
    auto &exchange = *static_cast<HttpExchange *>(self);
    if (std::exchange(exchange.m_transferred, received + sent) != received + sent)
        exchange.restartIdleTimer();
    return 0;
}

/// libcurl resends a request that the server refused to process (REFUSED_STREAM), even on a new connection.
/// For a POST the second attempt is aborted here.
int HttpExchange::onConnected(void *self, char *, char *, int, int) noexcept
{
    auto &exchange = *static_cast<HttpExchange *>(self);
    const bool again = std::exchange(exchange.m_sent, true);
    return again && exchange.m_request.body ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

void HttpExchange::restartIdleTimer()
{
    if (!m_slot->isFinished())
        m_idle.start(m_options.idleLimit);
}

void HttpExchange::complete(CURLcode result)
{
    if (result != CURLE_OK) {
        end(kindOf(result));
    } else if (!m_headComplete) {
        end(TransportError::Kind::ConnectionLost);
    } else if (status().value_or(0) / 100 == 1) {
        // A switch to another protocol (101), which the request did not ask for.
        end(TransportError::Kind::Broken);
    } else {
        m_idle.stop();
        m_total.stop();
        m_slot->finish();
    }
}

void HttpExchange::end(TransportError::Kind kind)
{
    m_idle.stop();
    m_total.stop();
    m_slot->finish(std::make_exception_ptr(TransportError(kind)));
}

} // namespace clockwell
