#include "server/admin/AdminDatabase.h"
#include "server/admin/Printable.h"
#include "server/admin/Reports.h"
#include "server/admin/cli/Commands.h"
#include "server/admin/cli/Csv.h"
#include "server/storage/NewFile.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace clockwell::server {

namespace {

struct ReportCommandOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string month;
    ReportScope scope;
    std::string output; // empty: standard output
    bool force = false;
    bool mark = false;
};

std::string monthProblem(const std::string &text)
{
    return parseMonth(text) ? "" : "\"" + text + "\" is not a month like 2026-05";
}

std::string cellText(const Json &cell)
{
    if (cell.is_null())
        return {};
    return cell.is_string() ? spreadsheetText(cell.get_ref<const std::string &>()) : cell.dump();
}

/// RFC 4180 with a header line, UTF-8; texts are made harmless for spreadsheets, nulls are empty.
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

/// An array with one object a row.
Json rowsJson(const ReportTable &table)
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

std::string textOf(const ReportTable &table, const ReportCommandOptions &options)
{
    if (options.common->json)
        return jsonText(rowsJson(table));
    constexpr const char *byteOrderMark = "\xEF\xBB\xBF";
    return (options.mark ? byteOrderMark : "") + csvText(table);
}

void print(const std::string &text)
{
    const bool complete = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) != 0 || !complete)
        throw std::runtime_error{"The report could not be written: " + std::system_category().message(errno) +
                                 "."};
}

void save(const std::string &text, const ReportCommandOptions &options)
{
    NewFile file{options.output, options.force ? NewFile::IfThere::Replace : NewFile::IfThere::Refuse};
    file.write(text);
    file.publish();
}

void sayWhere(const ReportCommandOptions &options, std::size_t rows)
{
    if (options.common->json) {
        Json object;
        object["file"] = options.output;
        object["rows"] = rows;
        return printJson(object);
    }
    std::printf("Wrote %zu %s to %s.\n", rows, rows == 1 ? "row" : "rows", options.output.c_str());
}

void report(const ReportCommandOptions &options)
{
    AdminDatabase database{options.common->database};
    if (!options.output.empty())
        requireNoPartOf(options.common->database, options.output);
    ReportScope scope = options.scope;
    scope.month = parseMonth(options.month).value();
    const MonthReport found = database.database().read(
        [&](Connection &connection) { return reportOf(connection, scope, systemClock()()); });
    for (const std::string &email : found.withoutOffice)
        std::fprintf(stderr, "clockwell-server: %s is left out, for there is no office to judge by.\n",
                     printable(email).c_str());
    const std::string text = textOf(found.table, options);
    if (options.output.empty())
        return print(text);
    save(text, options);
    sayWhere(options, found.table.rows.size());
}

} // namespace

void addReportCommand(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                      const ChooseCommand &choose)
{
    CLI::App *command = admin.add_subcommand("report", "Write a month of attendance as CSV, or with --json");
    command->footer(
        "Example: clockwell-server admin --database clockwell.db report 2026-05 --output may.csv");
    const auto own = std::make_shared<ReportCommandOptions>();
    own->common = options;
    command->add_option("MONTH", own->month, "The month, e.g. 2026-05")->required()->check(monthProblem);
    command->add_option("--office", own->scope.office,
                        "Only the employees of the office with this name or identifier");
    command->add_flag("--days", own->scope.days, "A row for each employee and day, not for each employee");
    CLI::Option *output = command->add_option("--output", own->output, "Write to this file")
                              ->type_name("FILE")
                              ->check([](const std::string &text) {
                                  return text.empty() ? std::string{"the file's name is empty"} : "";
                              });
    command->add_flag("--force", own->force, "Replace the file if it is there")->needs(output);
    command->add_flag("--byte-order-mark", own->mark,
                      "Begin the CSV with a mark by which spreadsheets know that it is UTF-8");
    command->callback([=] { choose([=] { report(*own); }); });
}

} // namespace clockwell::server
