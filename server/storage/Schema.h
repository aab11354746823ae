#pragma once

#include <string>
#include <vector>

namespace clockwell::server {

/// The steps from an empty database to the current schema, in order. A step that was ever released is never
/// edited: changes are appended as a new step.
const std::vector<std::vector<std::string>> &schemaSteps();

} // namespace clockwell::server
