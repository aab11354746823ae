#include "server/log/RepeatedLines.h"

#include <algorithm>
#include <array>
#include <utility>

namespace clockwell::server {

namespace {

constexpr std::size_t mostKinds = 500;
constexpr std::chrono::seconds pauseBetweenLooks{1};
constexpr std::string_view otherKinds = "others";
constexpr std::string_view unanswered = "0";

/// Takes "key=value" from the front of a line. Empty at its end, and from the first quoted value on, which
/// can hold anything.
std::string_view takePair(std::string_view &line)
{
    const std::string_view pair = line.substr(0, line.find(' '));
    line.remove_prefix(std::min(line.size(), pair.size() + 1));
    return pair.find('"') == std::string_view::npos ? pair : std::string_view{};
}

bool isRefusal(std::string_view event, std::string_view status, bool isWarning)
{
    if (event == "request")
        return status == unanswered || status.starts_with('4') || status.starts_with('5');
    return isWarning || event.ends_with("Refused");
}

/// "request method=GET path=/api/auth/me status=401"; empty for a line that is always written.
std::string kindOfLine(std::string_view line, bool isWarning)
{
    static constexpr std::array<std::string_view, 5> keysOfKind{"method", "path", "status", "reason",
                                                                "again"};
    std::string_view event;
    std::string_view status;
    std::string rest;
    for (auto pair = takePair(line); !pair.empty(); pair = takePair(line)) {
        const std::string_view key = pair.substr(0, pair.find('='));
        const std::string_view value = pair.substr(std::min(pair.size(), key.size() + 1));
        if (key == "employee" || key == "messages")
            return {};
        if (key == "event")
            event = value;
        if (key == "status")
            status = value;
        if (std::ranges::find(keysOfKind, key) != keysOfKind.end())
            rest.append(1, ' ').append(pair);
    }
    return isRefusal(event, status, isWarning) ? std::string{event} + rest : std::string{};
}

} // namespace

bool RepeatedLines::admits(std::string_view line, bool isWarning, Time now)
{
    std::string kind = kindOfLine(line, isWarning);
    if (kind.empty())
        return true;
    if (m_counts.size() >= mostKinds && !m_counts.contains(kind))
        kind = otherKinds;
    Count &count = m_counts.try_emplace(std::move(kind), Count{now}).first->second;
    const bool isShown = count.written < shown;
    ++(isShown ? count.written : count.hidden);
    return isShown;
}

std::vector<std::string> RepeatedLines::summaries(Time now)
{
    std::vector<std::string> lines;
    if (now < m_nextLook)
        return lines;
    m_nextLook = now + pauseBetweenLooks;
    for (auto at = m_counts.begin(); at != m_counts.end();) {
        auto &[kind, count] = *at;
        if (now < count.begin + interval) {
            ++at;
        } else if (count.hidden == 0) {
            at = m_counts.erase(at);
        } else {
            lines.push_back("event=repeated of=" + kind + " count=" + std::to_string(count.hidden));
            count.begin = now;
            count.hidden = 0;
            ++at;
        }
    }
    return lines;
}

} // namespace clockwell::server
