#pragma once

#include "server/admin/Audit.h"

#include <string>

namespace clockwell::server {

/// Of the form in docs/administration.md.
Json auditJson(const AuditEntry &entry);

/// "ada@example.org (root)"; only the latter when no administrator was named.
std::string whoText(const AuditEntry &entry);

/// "status PENDING -> APPROVED, office - -> Annex"; for what is new or gone, its values.
std::string changeText(const AuditEntry &entry);

} // namespace clockwell::server
