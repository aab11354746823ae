#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

/// A password in the form in which it is hashed: composed (NFC) and with every kind of space as U+0020, as
/// the OpaqueString profile has it (RFC 8265, section 4.2), so that it does not depend on the keyboard.
/// `utf8` is valid UTF-8; ASCII stays as it is.
std::string preparedPassword(std::string_view utf8);

/// One plain sentence for every rule that a new password breaks; empty when it is good.
std::vector<std::string> passwordProblems(const std::string &utf8);

} // namespace clockwell::server
