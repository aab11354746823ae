#pragma once

#include <string>

namespace clockwell::server {

/// What a command did, or found to be so already.
struct Outcome
{
    bool changed = false;
    std::string text; ///< a sentence for the administrator
};

} // namespace clockwell::server
