#pragma once

#include "server/mail/MailSettings.h"

namespace CLI {
class App;
}

namespace clockwell::server {

/// Adds the options that say where e-mails go; `settings` outlives the parsing.
void addMailOptions(CLI::App &command, MailSettings &settings);

} // namespace clockwell::server
