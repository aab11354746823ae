#pragma once

#include "server/mail/Mail.h"

#include <string>

namespace clockwell::server {

// Nothing that a stranger typed is part of these: whoever knows an address could otherwise write to it in the
// server's name. The precedence is a stranger's, but for those that say otherwise.

/// Six digits, and six more that are only asked for after many wrong codes.
struct MailedCode
{
    std::string first;
    std::string second;
};

/// `contested`: somebody with another password has signed up with the address before.
Mail verificationMail(const std::string &to, const MailedCode &code, bool contested);
Mail resetMail(const std::string &to, const MailedCode &code, Precedence precedence);
/// To whoever asked for another code before the address was verified, for whichever purpose.
Mail codeMail(const std::string &to, const MailedCode &code);

/// For the owner of an address that is verified now, with whose address several people had signed up: one of
/// people's own.
Mail choosePasswordMail(const std::string &to);

/// For the owner of an account with whose address somebody tried to sign up.
Mail addressTakenMail(const std::string &to);

} // namespace clockwell::server
