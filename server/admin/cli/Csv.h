#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

/// One record of a CSV file (RFC 4180): cells with a separator, a quote, a line break or blanks at an end are
/// quoted; the line ends in CRLF.
std::string csvLine(const std::vector<std::string> &cells);

/// A text that people chose, made harmless for spreadsheets: these run a cell that begins with = + - @ as a
/// formula. Such a character gets an apostrophe before it, which makes the cell a text; also behind a
/// character at which some programs split cells, whatever the quotes say. Control characters become "?".
std::string spreadsheetText(std::string_view text);

} // namespace clockwell::server
