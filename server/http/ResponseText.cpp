#include "ResponseText.h"

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/span_body.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <stdexcept>
#include <string_view>

namespace clockwell::server {

namespace http = boost::beast::http;

namespace {

using Message = http::response<http::span_body<const char>>;

bool isFieldName(std::string_view name)
{
    return !name.empty() && std::all_of(
                                name.begin(), name.end(),
                                [](char c) {
                                    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' ||
                                           c == '_';
                                });
}

/// These say how the message is framed or are set for every response; a handler may not set them.
bool isReserved(std::string_view name)
{
    static constexpr std::array reserved{"content-length", "transfer-encoding", "connection", "content-type",
                                         "date",           "cache-control"};
    std::string lower(name);
    for (char &c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return std::find(reserved.begin(), reserved.end(), lower) != reserved.end();
}

bool isFieldValue(std::string_view value)
{
    return std::all_of(
        value.begin(), value.end(), [](char c) { return c == '\t' || (c >= ' ' && c != 0x7F); });
}

void refuseHeader(std::string_view name)
{
    throw std::invalid_argument("a response header cannot be sent: " + std::string(name.substr(0, 40)));
}

void addHeader(Message &message, std::string_view name, std::string_view value)
{
    if (!isFieldName(name) || !isFieldValue(value))
        refuseHeader(name);
    message.insert({name.data(), name.size()}, {value.data(), value.size()});
}

void addHeaders(Message &message, const Response &response, const ResponseFraming &framing, bool bodyAllowed,
                std::time_t now)
{
    addHeader(message, "Date", httpDate(now));
    addHeader(message, "Cache-Control", "no-store");
    addHeader(message, "X-Content-Type-Options", "nosniff");
    for (const auto &[name, value] : response.headers) {
        if (isReserved(name))
            refuseHeader(name);
        addHeader(message, name, value);
    }
    if (bodyAllowed) {
        addHeader(message, "Content-Type", response.contentType);
        addHeader(message, "Content-Length", std::to_string(response.body.size()));
    }
    if (!framing.keepAlive)
        addHeader(message, "Connection", "close");
    else if (framing.http10)
        addHeader(message, "Connection", "keep-alive");
}

/// In one piece: a TLS record and a packet for each response.
std::string serialized(const Message &message)
{
    http::response_serializer<Message::body_type> serializer{message};
    std::string text;
    text.reserve(512 + message.body().size());
    while (!serializer.is_done()) {
        boost::system::error_code error;
        serializer.next(error, [&](boost::system::error_code &, const auto &buffers) {
            const std::size_t before = text.size();
            const std::size_t more = boost::beast::buffer_bytes(buffers);
            text.resize(before + more);
            boost::asio::buffer_copy(boost::asio::buffer(text.data() + before, more), buffers);
            serializer.consume(more);
        });
        if (error)
            throw boost::system::system_error{error};
    }
    return text;
}

} // namespace

std::string httpDate(std::time_t time)
{
    static constexpr const char *days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char *months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm utc{};
    gmtime_r(&time, &utc);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%s, %02d %s %04d %02d:%02d:%02d GMT", days[utc.tm_wday],
                  utc.tm_mday, months[utc.tm_mon], utc.tm_year + 1900, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return text.data();
}

std::string responseText(const Response &response, const ResponseFraming &framing, std::time_t now)
{
    if (response.status < 200 || response.status > 599)
        throw std::invalid_argument("not a final status: " + std::to_string(response.status));
    const bool bodyAllowed = response.status != 204 && response.status != 304;
    Message message;
    message.version(11);
    message.result(static_cast<unsigned>(response.status));
    addHeaders(message, response, framing, bodyAllowed, now);
    if (bodyAllowed && !framing.withoutBody)
        message.body() = {response.body.data(), response.body.size()};
    return serialized(message);
}

} // namespace clockwell::server
