#include "server/admin/ReportCommand.h"

#include "server/admin/AdminDatabase.h"
#include "server/admin/MonthReport.h"
#include "server/admin/NewFile.h"
#include "server/admin/Table.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace clockwell::server {

namespace {

struct ReportOptions
{
    std::shared_ptr<AdminOptions> common;
    std::string month;
    ReportWishes wishes;
    std::string output; // empty: standard output
    bool force = false;
    bool mark = false;
};

std::string monthProblem(const std::string &text)
{
    return parseMonth(text) ? "" : "\"" + text + "\" is not a month like 2026-05";
}

std::string textOf(const ReportTable &table, const ReportOptions &options)
{
    if (options.common->json)
        return jsonText(toJson(table));
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

void save(const std::string &text, const ReportOptions &options)
{
    NewFile file{options.output, options.force ? NewFile::IfThere::Replace : NewFile::IfThere::Refuse};
    file.write(text);
    file.publish();
}

void sayWhere(const ReportOptions &options, std::size_t rows)
{
    if (options.common->json) {
        Json object;
        object["file"] = options.output;
        object["rows"] = rows;
        return printJson(object);
    }
    std::printf("Wrote %zu %s to %s.\n", rows, rows == 1 ? "row" : "rows", options.output.c_str());
}

void report(const ReportOptions &options)
{
    AdminDatabase database{options.common->database};
    if (!options.output.empty())
        requireNoPartOf(options.common->database, options.output);
    ReportWishes wishes = options.wishes;
    wishes.month = parseMonth(options.month).value();
    const MonthReport found = database.database().read(
        [&](Connection &connection) { return reportOf(connection, wishes, systemClock()()); });
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
    const auto own = std::make_shared<ReportOptions>();
    own->common = options;
    command->add_option("MONTH", own->month, "The month, e.g. 2026-05")->required()->check(monthProblem);
    command->add_option("--office", own->wishes.office,
                        "Only the employees of the office with this name or identifier");
    command->add_flag("--days", own->wishes.days, "A row for each employee and day, not for each employee");
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
