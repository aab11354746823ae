#pragma once

#include "server/mail/Mail.h"

namespace clockwell::server {

// Nothing that a stranger typed is part of these: whoever knows an address could otherwise write to it in the
// server's name.

Mail verificationMail(const std::string &to, const std::string &code);
Mail resetMail(const std::string &to, const std::string &code);

/// For the owner of an account with whose address somebody tried to sign up.
Mail addressTakenMail(const std::string &to);

} // namespace clockwell::server
