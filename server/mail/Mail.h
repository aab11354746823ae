#pragma once

#include <functional>
#include <string>

namespace clockwell::server {

/// One e-mail as the server's rules see it. Texts are UTF-8; `text` has lines that end with '\n'.
struct Mail
{
    std::string to; ///< an address that isEmailAddress() accepts
    std::string subject;
    std::string text;
};

/// Takes an e-mail to send it later; never blocks, never throws. Called on several threads at once.
using SendMail = std::function<void(Mail)>;

} // namespace clockwell::server
