#include "server/mail/MailMessage.h"

#include "server/http/Utf8.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace clockwell::server {

namespace {

constexpr std::size_t longestLine = 76; // RFC 2045, section 6.7, rule 5
constexpr std::size_t bytesOfEncodedWord =
    45; // 60 characters of base64; with its frame below the 75 of RFC 2047

bool isAscii(std::string_view text)
{
    return std::ranges::all_of(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

std::string base64(std::string_view bytes)
{
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        unsigned group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8U | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= count ? digits[group >> (18U - 6U * k) & 63U] : '=';
    }
    return text;
}

/// The part of an address behind the @, or a name for this machine that means nothing elsewhere.
std::string_view domainOf(std::string_view address)
{
    const auto at = address.rfind('@');
    return at == std::string_view::npos ? "localhost" : address.substr(at + 1);
}

} // namespace

std::string headerValue(std::string_view utf8)
{
    std::string clean{utf8};
    std::ranges::replace_if(clean, isControl, ' ');
    if (isAscii(clean) && clean.find("=?") == std::string::npos)
        return clean;
    std::string words;
    for (std::size_t begin = 0; begin < clean.size();) {
        std::size_t end = std::min(begin + bytesOfEncodedWord, clean.size());
        while (end < clean.size() && isContinuation(clean[end])) // characters are not divided
            --end;
        words += (words.empty() ? "=?UTF-8?B?" : "\r\n =?UTF-8?B?") +
                 base64(clean.substr(begin, end - begin)) + "?=";
        begin = end;
    }
    return words;
}

std::string quotedPrintable(std::string_view text)
{
    std::string encoded;
    std::size_t column = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\n') {
            encoded += "\r\n";
            column = 0;
            continue;
        }
        const bool endsLine = i + 1 == text.size() || text[i + 1] == '\n';
        const bool plain = (c > ' ' && c <= '~' && c != '=') || (c == ' ' && !endsLine);
        const std::string piece =
            plain ? std::string(1, c) : fmt::format("={:02X}", static_cast<unsigned char>(c));
        if (column + piece.size() + (endsLine ? 0 : 1) > longestLine) {
            encoded += "=\r\n";
            column = 0;
        }
        encoded += piece;
        column += piece.size();
    }
    return encoded;
}

std::string messageText(const Mail &mail, const std::string &from, Instant now, const std::string &id)
{
    const auto date = std::chrono::floor<std::chrono::seconds>(now).time_since_epoch().count();
    return fmt::format("From: Clockwell <{}>\r\n"
                       "To: <{}>\r\n"
                       "Subject: {}\r\n"
                       "Date: {:%a, %d %b %Y %H:%M:%S} +0000\r\n"
                       "Message-ID: <{}@{}>\r\n"
                       "Auto-Submitted: auto-generated\r\n" // RFC 3834: no out-of-office replies
                       "MIME-Version: 1.0\r\n"
                       "Content-Type: text/plain; charset=utf-8\r\n"
                       "Content-Transfer-Encoding: quoted-printable\r\n"
                       "\r\n",
                       headerValue(from), headerValue(mail.to), headerValue(mail.subject), fmt::gmtime(date),
                       id, domainOf(from)) +
           quotedPrintable(mail.text);
}

} // namespace clockwell::server
