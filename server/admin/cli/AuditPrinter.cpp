#include "server/admin/cli/AuditPrinter.h"

#include "server/storage/Instant.h"

namespace clockwell::server {

namespace {

Json storedValue(const std::optional<std::string> &text)
{
    return text ? Json::parse(*text) : Json(nullptr);
}

std::string valueText(const Json &value)
{
    if (value.is_null())
        return "-";
    if (value.is_string())
        return value.get<std::string>();
    std::string text;
    if (value.is_array()) {
        for (const Json &part : value)
            text += (text.empty() ? "" : ",") + valueText(part);
        return text;
    }
    return value.dump();
}

/// "checkInAt" beside "checkIn" is the same time once more, for scripts.
bool repeatsInUtc(const std::string &key, const Json &object)
{
    return key.ends_with("At") && object.contains(key.substr(0, key.size() - 2));
}

} // namespace

Json auditJson(const AuditEntry &entry)
{
    Json json;
    json["number"] = entry.number;
    json["at"] = toIsoText(fromMillis(entry.at));
    json["administrator"] = optionalJson(entry.administrator);
    json["osUser"] = entry.osUser;
    json["command"] = entry.command;
    json["subject"] = entry.subject;
    json["day"] = optionalJson(entry.day);
    json["reason"] = optionalJson(entry.reason);
    json["before"] = storedValue(entry.before);
    json["after"] = storedValue(entry.after);
    return json;
}

std::string whoText(const AuditEntry &entry)
{
    return entry.administrator ? *entry.administrator + " (" + entry.osUser + ")" : entry.osUser;
}

std::string changeText(const AuditEntry &entry)
{
    const Json before = storedValue(entry.before);
    const Json after = storedValue(entry.after);
    const bool both = !before.is_null() && !after.is_null();
    const Json &all = after.is_null() ? before : after;
    std::string text;
    for (const auto &[key, value] : all.items()) {
        const Json was = both ? before.value(key, Json(nullptr)) : Json(nullptr);
        if (was != value && !repeatsInUtc(key, all))
            text += (text.empty() ? "" : ", ") + key + " " + (both ? valueText(was) + " -> " : "") +
                    valueText(value);
    }
    return text.empty() ? "-" : text;
}

} // namespace clockwell::server
