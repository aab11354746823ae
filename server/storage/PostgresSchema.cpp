#include "server/storage/Schema.h"

#include <regex>

namespace clockwell::server {

namespace {

// A trigger, for a right that is taken away would bind only other users than the tables' owner, and a rule
// would pass over what it forbids in silence.
const std::vector<std::string> auditTriggers{
    "CREATE FUNCTION audit_is_only_added_to() RETURNS trigger LANGUAGE plpgsql AS"
    " 'BEGIN RAISE EXCEPTION ''the audit is only added to''; END'",
    "CREATE TRIGGER audit_is_not_changed BEFORE UPDATE OR DELETE ON audit"
    " FOR EACH ROW EXECUTE FUNCTION audit_is_only_added_to()",
    "CREATE TRIGGER audit_is_not_emptied BEFORE TRUNCATE ON audit"
    " FOR EACH STATEMENT EXECUTE FUNCTION audit_is_only_added_to()",
};

bool isTrigger(const std::string &statement)
{
    return statement.starts_with("CREATE TRIGGER");
}

/// The types of columns, which stand behind a name and so behind a blank.
std::string withTypes(const std::string &statement)
{
    static const std::regex text{R"( (VAR)?CHAR\((\d+)\))"};
    static const std::regex longText{R"( TEXT\b)"};
    static const std::regex integer{R"( INTEGER\b)"};
    std::string adapted = std::regex_replace(statement, text, R"( VARCHAR($2) COLLATE "C")");
    adapted = std::regex_replace(adapted, longText, R"( TEXT COLLATE "C")");
    return std::regex_replace(adapted, integer, " BIGINT");
}

std::vector<std::string> adaptedStep(const std::vector<std::string> &step)
{
    std::vector<std::string> adapted;
    bool hasTriggers = false;
    for (const std::string &statement : step)
        if (isTrigger(statement))
            hasTriggers = true; // the audit's, the only ones
        else
            adapted.push_back(withTypes(statement));
    if (hasTriggers)
        adapted.insert(adapted.end(), auditTriggers.begin(), auditTriggers.end());
    return adapted;
}

} // namespace

const std::vector<std::vector<std::string>> &postgresSchemaSteps()
{
    static const std::vector<std::vector<std::string>> steps = [] {
        std::vector<std::vector<std::string>> all;
        for (const auto &step : schemaSteps())
            all.push_back(adaptedStep(step));
        return all;
    }();
    return steps;
}

} // namespace clockwell::server
