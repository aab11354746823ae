#include "server/mail/SmtpDelivery.h"

#include "server/auth/EmailAddress.h"
#include "server/auth/Tokens.h"
#include "server/mail/MailMessage.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace clockwell::server {

namespace {

/// Once in the life of the process; threads may come later.
void requireCurl()
{
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK)
        throw std::runtime_error{"The SMTP library cannot be used on this machine."};
}

struct Upload
{
    std::string text;
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

long encryptionOf(SmtpEncryption encryption)
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

/// One message's transfer with everything it holds.
class Transfer
{
public:
    Transfer() : m_handle(curl_easy_init())
    {
        if (m_handle == nullptr)
            throw DeliveryError{DeliveryError::Kind::Transient, "out of memory"};
    }
    ~Transfer()
    {
        curl_slist_free_all(m_recipients);
        curl_easy_cleanup(m_handle);
    }
    Transfer(const Transfer &) = delete;
    Transfer &operator=(const Transfer &) = delete;

    template <class Value>
    void set(CURLoption option, Value value)
    {
        if (curl_easy_setopt(m_handle, option, value) != CURLE_OK)
            throw DeliveryError{DeliveryError::Kind::Permanent, "an option of the SMTP library was refused"};
    }
    void addRecipient(const std::string &address)
    {
        m_recipients = curl_slist_append(m_recipients, address.c_str());
        set(CURLOPT_MAIL_RCPT, m_recipients);
    }
    CURLcode perform() { return curl_easy_perform(m_handle); }
    long reply() const
    {
        long code = 0;
        curl_easy_getinfo(m_handle, CURLINFO_RESPONSE_CODE, &code);
        return code;
    }

private:
    CURL *m_handle;
    curl_slist *m_recipients = nullptr;
};

/// RFC 5321, section 4.2.1. A server that goes away in the middle leaves an older reply behind, so the reply
/// counts only for failures that are refusals.
DeliveryError::Kind kindOf(CURLcode result, long reply)
{
    switch (result) {
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_USE_SSL_FAILED:
        return DeliveryError::Kind::Permanent;
    case CURLE_LOGIN_DENIED:
    case CURLE_SEND_ERROR:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_RECV_ERROR:
        return reply >= 500 ? DeliveryError::Kind::Permanent : DeliveryError::Kind::Transient;
    default:
        return DeliveryError::Kind::Transient;
    }
}

} // namespace

bool isSmtpUrl(const std::string &url)
{
    std::string_view rest = url;
    if (rest.starts_with("smtp://"))
        rest.remove_prefix(7);
    else if (rest.starts_with("smtps://"))
        rest.remove_prefix(8);
    else
        return false;
    return !rest.empty() && std::ranges::all_of(rest, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
               c == '-' || c == ':' || c == '[' || c == ']';
    });
}

SmtpDelivery::SmtpDelivery(SmtpOptions options, Clock clock)
    : m_options(std::move(options)), m_clock(std::move(clock))
{
    requireCurl();
}

void SmtpDelivery::deliver(const Mail &mail, const std::atomic<bool> &giveUp)
{
    if (!isEmailAddress(mail.to)) // it becomes part of a command
        throw DeliveryError{DeliveryError::Kind::Permanent, "the recipient is not an e-mail address"};
    Upload upload{messageText(mail, m_options.from, m_clock(), newId())};
    Transfer transfer;
    transfer.set(CURLOPT_URL, m_options.url.c_str());
    transfer.set(CURLOPT_PROTOCOLS_STR, "smtp,smtps");
    transfer.set(CURLOPT_NOSIGNAL, 1L); // signals and threads do not mix
    transfer.set(CURLOPT_TIMEOUT, static_cast<long>(m_options.limit.count()));
    transfer.set(CURLOPT_USE_SSL, encryptionOf(m_options.encryption));
    if (!m_options.certificateAuthorities.empty())
        transfer.set(CURLOPT_CAINFO, m_options.certificateAuthorities.c_str());
    if (!m_options.user.empty()) {
        transfer.set(CURLOPT_USERNAME, m_options.user.c_str());
        transfer.set(CURLOPT_PASSWORD, m_options.password.c_str());
    }
    transfer.set(CURLOPT_MAIL_FROM, m_options.from.c_str());
    transfer.addRecipient(mail.to);
    transfer.set(CURLOPT_UPLOAD, 1L);
    transfer.set(CURLOPT_READFUNCTION, &readUpload);
    transfer.set(CURLOPT_READDATA, &upload);
    transfer.set(CURLOPT_NOPROGRESS, 0L);
    transfer.set(CURLOPT_XFERINFOFUNCTION, &shallAbort);
    transfer.set(CURLOPT_XFERINFODATA, &giveUp);
    const CURLcode result = transfer.perform();
    if (result != CURLE_OK)
        throw DeliveryError{kindOf(result, transfer.reply()), std::string{curl_easy_strerror(result)} +
                                                                  ", reply " +
                                                                  std::to_string(transfer.reply())};
}

} // namespace clockwell::server
