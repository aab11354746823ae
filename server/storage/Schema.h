#pragma once

#include <string>
#include <vector>

namespace clockwell::server {

/// The steps from an empty database to the current schema, in order, as SQLite takes them. A step that was
/// ever released is never edited: changes are appended as a new step.
const std::vector<std::vector<std::string>> &schemaSteps();

/// The same steps for PostgreSQL. Texts sort by code point and change case in ASCII only, as they do in
/// SQLite, whatever the locale of the database; CHAR does not pad.
const std::vector<std::vector<std::string>> &postgresSchemaSteps();

} // namespace clockwell::server
