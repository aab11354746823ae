#pragma once

#include <string>

namespace clockwell::server {

/// Whose e-mail goes first when they cannot all go at once.
enum class Precedence {
    Own,      ///< for the owner of an account with a proven address
    Stranger, ///< what anybody can cause with any address: sign-ups, and accounts without a proven address
};

/// One e-mail as the server's rules see it. Texts are UTF-8; `text` has lines that end with '\n'.
struct Mail
{
    std::string to; ///< an address that isEmailAddress() accepts
    std::string subject;
    std::string text;
    Precedence precedence = Precedence::Stranger;
};

} // namespace clockwell::server
