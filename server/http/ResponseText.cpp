#include "ResponseText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <stdexcept>
#include <string_view>

namespace clockwell::server {

namespace {

const char *reasonPhrase(int status)
{
    static constexpr std::array<std::pair<int, const char *>, 25> phrases{{
        {200, "OK"},
        {201, "Created"},
        {202, "Accepted"},
        {204, "No Content"},
        {304, "Not Modified"},
        {400, "Bad Request"},
        {401, "Unauthorized"},
        {403, "Forbidden"},
        {404, "Not Found"},
        {405, "Method Not Allowed"},
        {408, "Request Timeout"},
        {409, "Conflict"},
        {410, "Gone"},
        {413, "Content Too Large"},
        {415, "Unsupported Media Type"},
        {417, "Expectation Failed"},
        {422, "Unprocessable Content"},
        {423, "Locked"},
        {429, "Too Many Requests"},
        {431, "Request Header Fields Too Large"},
        {500, "Internal Server Error"},
        {501, "Not Implemented"},
        {502, "Bad Gateway"},
        {503, "Service Unavailable"},
        {505, "HTTP Version Not Supported"},
    }};
    const auto found =
        std::find_if(phrases.begin(), phrases.end(), [status](auto &row) { return row.first == status; });
    return found == phrases.end() ? "" : found->second; // an empty phrase is allowed
}

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

void append(std::string &text, std::string_view name, std::string_view value)
{
    if (!isFieldName(name) || !isFieldValue(value))
        refuseHeader(name);
    text.append(name).append(": ").append(value).append("\r\n");
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
    std::string text =
        "HTTP/1.1 " + std::to_string(response.status) + ' ' + reasonPhrase(response.status) + "\r\n";
    text.reserve(512 + response.body.size());
    append(text, "Date", httpDate(now));
    append(text, "Cache-Control", "no-store");
    append(text, "X-Content-Type-Options", "nosniff");
    for (const auto &[name, value] : response.headers) {
        if (isReserved(name))
            refuseHeader(name);
        append(text, name, value);
    }
    if (bodyAllowed) {
        append(text, "Content-Type", response.contentType);
        append(text, "Content-Length", std::to_string(response.body.size()));
    }
    if (!framing.keepAlive)
        append(text, "Connection", "close");
    else if (framing.http10)
        append(text, "Connection", "keep-alive");
    text += "\r\n";
    if (bodyAllowed && !framing.withoutBody)
        text += response.body;
    return text;
}

} // namespace clockwell::server
