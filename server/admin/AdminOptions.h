#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace clockwell::server {

/// The options that all administration commands share.
struct AdminOptions
{
    std::string database;          ///< file name
    std::optional<std::string> as; ///< e-mail address of the administrator who acts
    bool json = false;             ///< print for scripts
};

/// Takes what the chosen command does; called while the command line is read.
using ChooseCommand = std::function<void(std::function<void()> command)>;

} // namespace clockwell::server
