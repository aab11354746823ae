#include "server/admin/cli/Csv.h"

#include "server/admin/Printable.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <cstdint>

namespace clockwell::server {

namespace {

bool isOneOf(UChar32 character, const char16_t *characters)
{
    return icu::UnicodeString{characters}.indexOf(character) >= 0;
}

std::string csvCell(const std::string &cell)
{
    const bool blanksAtAnEnd = !cell.empty() && (cell.front() == ' ' || cell.back() == ' ');
    if (!blanksAtAnEnd && cell.find_first_of(",;\t\"\r\n") == std::string::npos)
        return cell;
    std::string quoted = "\"";
    for (const char c : cell) {
        quoted += c;
        if (c == '"')
            quoted += '"';
    }
    quoted.push_back('"');
    return quoted;
}

} // namespace

std::string csvLine(const std::vector<std::string> &cells)
{
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i)
        line.append(i == 0 ? "" : ",").append(csvCell(cells[i]));
    return line.append("\r\n");
}

std::string spreadsheetText(std::string_view text)
{
    const auto characters = icu::UnicodeString::fromUTF8(printable(text));
    icu::UnicodeString safe;
    bool cellBegins = true;
    for (std::int32_t at = 0; at < characters.length(); at = characters.moveIndex32(at, 1)) {
        const UChar32 character = characters.char32At(at);
        if (cellBegins && isOneOf(character, u"=+-@\uFF1D\uFF0B\uFF0D\uFF20")) // also in full width
            safe.append(u'\'');
        if (isOneOf(character, u",;|"))
            cellBegins = true;
        else if (!isOneOf(character, u"\"'") && !u_isUWhiteSpace(character))
            cellBegins = false;
        safe.append(character);
    }
    std::string result;
    return safe.toUTF8String(result);
}

} // namespace clockwell::server
