#include "server/admin/AdminDatabase.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/cli/AuditPrinter.h"
#include "server/admin/cli/CommandParts.h"
#include "server/admin/cli/Commands.h"
#include "server/storage/Instant.h"

namespace clockwell::server {

namespace {

struct AuditOptions
{
    std::shared_ptr<AdminOptions> common;
    AuditFilter filter;
};

void list(const AuditOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto entries = database.database().read(
        [&](Connection &connection) { return listAudit(connection, options.filter); });
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

void addAuditCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                     const ChooseCommand &choose)
{
    CLI::App *command = admin.add_subcommand("audit", "List what administrators changed");
    command->footer("Example: clockwell-server admin --database clockwell.db audit --from 2026-12-01");
    const auto own = std::make_shared<AuditOptions>();
    own->common = options;
    command->add_option("--email", own->filter.email,
                        "Only changes about or by the person with this address");
    addField(*command, "--from", "Only changes from this day on (UTC), yyyy-MM-dd", own->filter.from,
             parseDay, dayRule)
        ->type_name("DAY");
    addField(*command, "--to", "Only changes up to this day, included", own->filter.to, parseDay, dayRule)
        ->type_name("DAY");
    command->callback([=] { choose([=] { list(*own); }); });
}

} // namespace clockwell::server
