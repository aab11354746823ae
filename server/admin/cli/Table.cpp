#include "server/admin/cli/Table.h"

#include "server/admin/Printable.h"

#include <algorithm>

namespace clockwell::server {

namespace {

std::string lineText(const std::vector<std::string> &cells, const std::vector<std::size_t> &widths)
{
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i)
        line += cells[i] + std::string(widths[i] - terminalWidth(cells[i]) + 2, ' ');
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

} // namespace

std::string tableText(const std::vector<std::string> &header,
                      const std::vector<std::vector<std::string>> &rows)
{
    std::vector<std::vector<std::string>> lines{header};
    lines.insert(lines.end(), rows.begin(), rows.end());
    std::vector<std::size_t> widths(header.size());
    for (auto &line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            line[i] = printable(line[i]);
            widths[i] = std::max(widths[i], terminalWidth(line[i]));
        }
    }
    std::string text;
    for (const auto &line : lines)
        text += lineText(line, widths);
    return text;
}

} // namespace clockwell::server
