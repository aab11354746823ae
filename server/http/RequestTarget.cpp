#include "RequestTarget.h"

#include <algorithm>
#include <cstdint>

namespace clockwell::server {

namespace {

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

bool isControl(unsigned char c)
{
    return c < 0x20 || c == 0x7F;
}

std::optional<std::string> percentDecode(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '%') {
            const int high = i + 2 < text.size() ? hexValue(text[i + 1]) : -1;
            const int low = i + 2 < text.size() ? hexValue(text[i + 2]) : -1;
            if (high < 0 || low < 0)
                return std::nullopt;
            c = static_cast<char>(high * 16 + low);
            i += 2;
        }
        if (isControl(static_cast<unsigned char>(c)))
            return std::nullopt;
        decoded.push_back(c);
    }
    if (!isUtf8(decoded))
        return std::nullopt;
    return decoded;
}

bool parseQuery(std::string_view text, std::multimap<std::string, std::string> &query)
{
    while (!text.empty()) {
        const std::string_view pair = text.substr(0, text.find('&'));
        text.remove_prefix(std::min(text.size(), pair.size() + 1));
        if (pair.empty())
            continue;
        const std::size_t equals = pair.find('=');
        auto key = percentDecode(pair.substr(0, equals));
        auto value = percentDecode(equals == pair.npos ? std::string_view() : pair.substr(equals + 1));
        if (!key || !value)
            return false;
        query.emplace(std::move(*key), std::move(*value));
    }
    return true;
}

bool escapesSlash(std::string_view path)
{
    return path.find("%2F") != path.npos || path.find("%2f") != path.npos;
}

/// How many bytes follow a lead byte, and the range of the first of them (RFC 3629, section 4); -1: no lead
/// byte.
struct Utf8Lead
{
    int trail = -1;
    unsigned char low = 0x80, high = 0xBF;
};

Utf8Lead utf8Lead(unsigned char c)
{
    if (c < 0x80)
        return {0};
    if (c >= 0xC2 && c <= 0xDF)
        return {1};
    if (c >= 0xE0 && c <= 0xEF)
        return {2, static_cast<unsigned char>(c == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(c == 0xED ? 0x9F : 0xBF)};
    if (c >= 0xF0 && c <= 0xF4)
        return {3, static_cast<unsigned char>(c == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(c == 0xF4 ? 0x8F : 0xBF)};
    return {};
}

} // namespace

bool isUtf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        Utf8Lead lead = utf8Lead(static_cast<unsigned char>(text[i++]));
        if (lead.trail < 0)
            return false;
        for (; lead.trail > 0; --lead.trail, lead.low = 0x80, lead.high = 0xBF) {
            if (i == text.size())
                return false;
            const auto c = static_cast<unsigned char>(text[i++]);
            if (c < lead.low || c > lead.high)
                return false;
        }
    }
    return true;
}

std::optional<RequestTarget> parseTarget(std::string_view target)
{
    const bool printable =
        std::all_of(target.begin(), target.end(), [](char c) { return c > ' ' && c < 0x7F; });
    if (!printable || target.empty() || target.front() != '/' || target.find('#') != target.npos)
        return std::nullopt;
    const std::size_t mark = target.find('?');
    auto path = escapesSlash(target.substr(0, mark)) ? std::nullopt : percentDecode(target.substr(0, mark));
    if (!path)
        return std::nullopt;
    RequestTarget result{std::move(*path), {}};
    if (mark != target.npos && !parseQuery(target.substr(mark + 1), result.query))
        return std::nullopt;
    return result;
}

} // namespace clockwell::server
