#pragma once

#include "server/mail/Mail.h"
#include "server/storage/Instant.h"

#include <string>
#include <string_view>

namespace clockwell::server {

/// The whole message as it travels: RFC 5322 with CRLF line ends, in ASCII only, no line beyond 78
/// characters. Control characters in a header value become spaces, so no value can add a header. `id` makes
/// the Message-ID. Not made by libcurl's MIME API: that hands messages to mail servers only, never to the
/// outbox, sends even a single text as multipart/mixed, and leaves header values as they are.
std::string messageText(const Mail &mail, const std::string &from, Instant now, const std::string &id);

/// A header value: as it is when it is ASCII, else as encoded words (RFC 2047).
std::string headerValue(std::string_view utf8);

/// RFC 2045, section 6.7
std::string quotedPrintable(std::string_view text);

} // namespace clockwell::server
