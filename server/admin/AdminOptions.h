#pragma once

#include <functional>
#include <memory>
#include <string>

namespace clockwell::server {

/// The options that all administration commands share.
struct AdminOptions
{
    std::string database; ///< file name
    bool json = false;    ///< print for scripts
};

/// Takes what the chosen command does; called while the command line is read.
using ChooseCommand = std::function<void(std::function<void()> command)>;

} // namespace clockwell::server
