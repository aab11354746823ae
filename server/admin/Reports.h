#pragma once

#include "server/admin/AdminJson.h"
#include "server/attendance/CalendarDay.h"
#include "server/storage/Connection.h"
#include "server/storage/Instant.h"

#include <optional>
#include <string>
#include <vector>

namespace clockwell::server {

/// What is reported.
struct ReportScope
{
    Month month;
    std::optional<std::string> office; ///< only its employees; name or identifier
    bool days = false;                 ///< a row for each employee and day, instead of for each employee
};

/// A report as rows of texts, whole numbers and nulls.
struct ReportTable
{
    std::vector<std::string> columns;
    std::vector<std::vector<Json>> rows;
};

struct MonthReport
{
    ReportTable table;
    std::vector<std::string> withoutOffice; ///< e-mail addresses of employees who could not be judged
};

/// A month of everybody who was approved at some time and had joined by its end and not left before it, by
/// office and name. The figures are those that the app's history and summary show, up to today in each
/// office's time zone. Throws AdminError: NotFound for an unknown office, Refused for a month that has not
/// begun anywhere.
MonthReport reportOf(Connection &connection, const ReportScope &scope, Instant now);

} // namespace clockwell::server
