#include "server/log/JsonLine.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace clockwell::server {

namespace {

using Field = std::pair<std::string_view, std::string>;
constexpr auto npos = std::string_view::npos;

bool isKey(std::string_view text)
{
    const auto fits = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    return !text.empty() && std::ranges::all_of(text, fits);
}

/// Takes a value in quotes, with quotes and backslashes behind backslashes, from the front of a text. Nothing
/// when its end is missing.
std::optional<std::string> takeQuoted(std::string_view &text)
{
    std::string value;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '"' && (at + 1 == text.size() || text[at + 1] == ' ')) {
            text.remove_prefix(at + 1);
            return value;
        }
        if (text[at] == '\\' && at + 1 < text.size() && (text[at + 1] == '"' || text[at + 1] == '\\'))
            ++at;
        value += text[at];
    }
    return std::nullopt;
}

std::optional<Field> takeField(std::string_view &text)
{
    const auto equals = text.find('=');
    if (equals == npos || !isKey(text.substr(0, equals)))
        return std::nullopt;
    const std::string_view key = text.substr(0, equals);
    text.remove_prefix(equals + 1);
    std::optional<std::string> value;
    if (text.starts_with('"')) {
        value = takeQuoted(text);
    } else {
        value = std::string{text.substr(0, text.find(' '))};
        text.remove_prefix(value->size());
    }
    text.remove_prefix(text.starts_with(' ') ? 1 : 0);
    return value ? std::optional{Field{key, std::move(*value)}} : std::nullopt;
}

/// Empty for a text of another form.
std::vector<Field> fieldsOf(std::string_view text)
{
    std::vector<Field> fields;
    while (!text.empty()) {
        auto field = takeField(text);
        if (!field)
            return {};
        fields.push_back(std::move(*field));
    }
    return fields;
}

/// A number where the log writes nothing else: a field must not change its type from line to line.
nlohmann::ordered_json jsonValue(const Field &field)
{
    static constexpr std::array<std::string_view, 8> numbers{"status",   "durationMs", "bytes", "count",
                                                             "messages", "attempts",   "port",  "signal"};
    if (std::ranges::find(numbers, field.first) == numbers.end())
        return field.second;
    auto number = nlohmann::ordered_json::parse(field.second, nullptr, false);
    return number.is_number() ? std::move(number) : nlohmann::ordered_json(field.second);
}

} // namespace

std::string jsonLine(Instant time, std::string_view level, std::string_view text)
{
    const auto fields = fieldsOf(text);
    const auto event = std::ranges::find(fields, std::string_view{"event"}, &Field::first);
    nlohmann::ordered_json line;
    line["time"] = toIsoText(time);
    line["level"] = level;
    line["message"] = event == fields.end() ? std::string{text} : event->second;
    if (event != fields.end())
        for (const Field &field : fields)
            if (field.first != "event" && !line.contains(field.first))
                line[std::string{field.first}] = jsonValue(field);
    constexpr int noIndent = -1;
    constexpr bool asciiOnly = true; // like the text: no mark of Unicode reaches a terminal
    return line.dump(noIndent, ' ', asciiOnly, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace clockwell::server
