#include "server/admin/AuditCommand.h"

#include "server/admin/AdminDatabase.h"
#include "server/admin/CommandParts.h"
#include "server/admin/FieldTexts.h"
#include "server/storage/Instant.h"

namespace clockwell::server {

namespace {

struct AuditOptions
{
    std::shared_ptr<AdminOptions> common;
    AuditWishes wishes;
};

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

void list(const AuditOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto entries = database.database().read(
        [&](Connection &connection) { return listAudit(connection, options.wishes); });
    Listing listing;
    listing.none = "No changes.";
    listing.header = {"WHEN", "WHO", "COMMAND", "ABOUT", "DAY", "CHANGE", "REASON"};
    listing.rows.reserve(entries.size());
    for (const AuditEntry &entry : entries) {
        listing.rows.push_back({toIsoText(fromMillis(entry.at)), whoText(entry), entry.command, entry.subject,
                                entry.day.value_or("-"), changeText(entry), entry.reason.value_or("-")});
        listing.objects.push_back(auditJson(entry));
    }
    printListing(listing, options.common->json);
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

void addAuditCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                     const ChooseCommand &choose)
{
    CLI::App *command = admin.add_subcommand("audit", "List what administrators changed");
    command->footer("Example: clockwell-server admin --database clockwell.db audit --from 2026-12-01");
    const auto own = std::make_shared<AuditOptions>();
    own->common = options;
    command->add_option("--email", own->wishes.email,
                        "Only changes about or by the person with this address");
    addField(*command, "--from", "Only changes from this day on (UTC), yyyy-MM-dd", own->wishes.from,
             parseDay, dayRule)
        ->type_name("DAY");
    addField(*command, "--to", "Only changes up to this day, included", own->wishes.to, parseDay, dayRule)
        ->type_name("DAY");
    command->callback([=] { choose([=] { list(*own); }); });
}

} // namespace clockwell::server
