#include "server/mail/SmtpConnection.h"

#include <sys/socket.h>

#include <algorithm>
#include <memory>

namespace clockwell::server {

namespace {

constexpr long connectSeconds = 10;
constexpr long keepSeconds = 60; // mail servers close a connection that is idle for minutes
constexpr long serviceNotAvailable = 421;

struct Upload
{
    const std::string &text;
    std::size_t sent = 0;
};

std::size_t readUpload(char *buffer, std::size_t size, std::size_t count, void *state)
{
    auto &upload = *static_cast<Upload *>(state);
    const std::size_t part = std::min(size * count, upload.text.size() - upload.sent);
    upload.text.copy(buffer, part, upload.sent);
    upload.sent += part;
    return part;
}

int shallAbort(void *giveUp, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    return *static_cast<const std::atomic<bool> *>(giveUp) ? 1 : 0;
}

int noteThatItIsReady(void *isReady, char *, char *, int, int)
{
    *static_cast<bool *>(isReady) = true;
    return CURL_PREREQFUNC_OK;
}

long curlEncryption(SmtpEncryption encryption)
{
    switch (encryption) {
    case SmtpEncryption::None:
        return CURLUSESSL_NONE;
    case SmtpEncryption::Optional:
        return CURLUSESSL_TRY;
    case SmtpEncryption::Required:
        break;
    }
    return CURLUSESSL_ALL;
}

/// What fails before the first command has nothing to do with the message. After that a reply decides (RFC
/// 5321, section 4.2.1), unless it is an older one than the failure.
DeliveryError::Kind kindOfDeliveryFailure(bool isReady, long reply)
{
    if (!isReady)
        return DeliveryError::Kind::Down;
    return reply >= 500 ? DeliveryError::Kind::Permanent : DeliveryError::Kind::Transient;
}

} // namespace

SmtpConnection::SmtpConnection(const SmtpOptions &options) : m_options(options), m_handle(curl_easy_init())
{
    if (m_handle == nullptr)
        throw DeliveryError{DeliveryError::Kind::Transient, "out of memory"};
}

SmtpConnection::~SmtpConnection()
{
    // The library says goodbye and waits for the answer, for minutes from a server that has stalled.
    curl_socket_t socket = CURL_SOCKET_BAD;
    if (curl_easy_getinfo(m_handle, CURLINFO_ACTIVESOCKET, &socket) == CURLE_OK && socket != CURL_SOCKET_BAD)
        ::shutdown(socket, SHUT_RD);
    curl_easy_cleanup(m_handle);
}

void SmtpConnection::deliver(const std::string &recipient, const std::string &text,
                             const std::atomic<bool> &giveUp)
{
    prepare(giveUp);
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> recipients{
        curl_slist_append(nullptr, recipient.c_str()), &curl_slist_free_all};
    Upload upload{text};
    set(CURLOPT_MAIL_FROM, m_options.from.c_str());
    set(CURLOPT_MAIL_RCPT, recipients.get());
    set(CURLOPT_UPLOAD, 1L);
    set(CURLOPT_READFUNCTION, &readUpload);
    set(CURLOPT_READDATA, &upload);
    try {
        perform();
    } catch (const DeliveryError &) {
        const bool isOver = reply() < 400 || reply() == serviceNotAvailable;
        if (!wasKept() || !isOver || giveUp)
            throw;
        upload.sent = 0;
        set(CURLOPT_FRESH_CONNECT, 1L);
        perform();
    }
}

void SmtpConnection::check(const std::atomic<bool> &giveUp)
{
    prepare(giveUp);
    set(CURLOPT_CUSTOMREQUEST, "NOOP");
    set(CURLOPT_NOBODY, 1L);
    perform();
}

template <class Value>
void SmtpConnection::set(CURLoption option, Value value)
{
    if (curl_easy_setopt(m_handle, option, value) != CURLE_OK)
        throw DeliveryError{DeliveryError::Kind::Permanent, "an option of the SMTP library was refused"};
}

void SmtpConnection::prepare(const std::atomic<bool> &giveUp)
{
    curl_easy_reset(m_handle); // keeps the connection
    set(CURLOPT_URL, m_options.url.c_str());
    set(CURLOPT_PROTOCOLS_STR, "smtp,smtps");
    set(CURLOPT_NOSIGNAL, 1L); // signals and threads do not mix
    set(CURLOPT_CONNECTTIMEOUT, connectSeconds);
    set(CURLOPT_TIMEOUT, static_cast<long>(m_options.limit.count()));
    set(CURLOPT_MAXAGE_CONN, keepSeconds);
    set(CURLOPT_USE_SSL, curlEncryption(m_options.encryption));
    if (!m_options.certificateAuthorities.empty())
        set(CURLOPT_CAINFO, m_options.certificateAuthorities.c_str());
    if (!m_options.user.empty()) {
        set(CURLOPT_USERNAME, m_options.user.c_str());
        set(CURLOPT_PASSWORD, m_options.password.c_str());
    }
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_XFERINFOFUNCTION, &shallAbort);
    set(CURLOPT_XFERINFODATA, &giveUp);
    set(CURLOPT_PREREQFUNCTION, &noteThatItIsReady);
    set(CURLOPT_PREREQDATA, &m_isReady);
}

void SmtpConnection::perform()
{
    m_isReady = false;
    const CURLcode result = curl_easy_perform(m_handle);
    if (result != CURLE_OK)
        throw DeliveryError{kindOfDeliveryFailure(m_isReady, reply()),
                            std::string{curl_easy_strerror(result)} + ", reply " + std::to_string(reply())};
}

bool SmtpConnection::wasKept() const
{
    long made = 1;
    curl_easy_getinfo(m_handle, CURLINFO_NUM_CONNECTS, &made);
    return made == 0;
}

long SmtpConnection::reply() const
{
    long code = 0;
    curl_easy_getinfo(m_handle, CURLINFO_RESPONSE_CODE, &code);
    return code;
}

} // namespace clockwell::server
