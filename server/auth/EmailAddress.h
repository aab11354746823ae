#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace clockwell::server {

inline constexpr std::size_t longestEmail = 254; // RFC 5321 as read by erratum 1690 of RFC 3696

/// Whether a text is an address that mail can be sent to: Dot-string "@" Domain of RFC 5321, section 4.1.2,
/// in ASCII. Nothing of that form can break out of a header or an SMTP command.
bool isEmailAddress(std::string_view text);

/// The mailbox of an account's address as most mail servers have it: without a tag, "+" and what follows it
/// in the local part. Only for counting e-mails: whether two addresses are the same mailbox is known to their
/// mail server alone, so accounts are never compared by it. `emailKey` is in lower case.
std::string mailboxOf(std::string_view emailKey);

/// Without the tabs and the spaces of any kind (Unicode's category Zs) around it: keyboards and clipboards
/// leave them behind unseen.
std::string trimmed(std::string_view text);

} // namespace clockwell::server
