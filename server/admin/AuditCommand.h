#pragma once

#include "server/admin/AdminOptions.h"
#include "server/admin/Audit.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds `audit`: the list of what administrators changed.
void addAuditCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                     const ChooseCommand &choose);

Json auditJson(const AuditEntry &entry);

/// "ada@example.org (root)"; only the latter when no administrator was named.
std::string whoText(const AuditEntry &entry);

/// "status PENDING -> APPROVED, office - -> Annex"; for what is new or gone, its values.
std::string changeText(const AuditEntry &entry);

} // namespace clockwell::server
