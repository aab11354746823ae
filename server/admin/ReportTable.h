#pragma once

#include "server/admin/AdminJson.h"

#include <string>
#include <vector>

namespace clockwell::server {

/// A report as rows of texts, whole numbers and nulls.
struct ReportTable
{
    std::vector<std::string> columns;
    std::vector<std::vector<Json>> rows;
};

/// RFC 4180 with a header line, UTF-8; texts are made harmless for spreadsheets, nulls are empty.
std::string csvText(const ReportTable &table);

/// An array with one object a row.
Json toJson(const ReportTable &table);

} // namespace clockwell::server
