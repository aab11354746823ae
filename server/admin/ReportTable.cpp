#include "server/admin/ReportTable.h"

#include "server/admin/Csv.h"

namespace clockwell::server {

namespace {

std::string cellText(const Json &cell)
{
    if (cell.is_null())
        return {};
    return cell.is_string() ? spreadsheetText(cell.get_ref<const std::string &>()) : cell.dump();
}

} // namespace

std::string csvText(const ReportTable &table)
{
    std::string text = csvLine(table.columns);
    for (const auto &row : table.rows) {
        std::vector<std::string> cells;
        cells.reserve(row.size());
        for (const Json &cell : row)
            cells.push_back(cellText(cell));
        text += csvLine(cells);
    }
    return text;
}

Json toJson(const ReportTable &table)
{
    Json list = Json::array();
    for (const auto &row : table.rows) {
        Json object;
        for (std::size_t i = 0; i < row.size(); ++i)
            object[table.columns[i]] = row[i];
        list.push_back(std::move(object));
    }
    return list;
}

} // namespace clockwell::server
