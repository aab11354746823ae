#include "server/storage/PostgresError.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace clockwell::server {

namespace {

struct Meaning
{
    std::string_view begin; // of the SQLSTATE: all five characters, or the two of a class
    DatabaseError::Kind kind;
    const char *text;
};

} // namespace

DatabaseError postgresError(const std::string &sqlstate)
{
    using Kind = DatabaseError::Kind;
    // The first that fits counts.
    static constexpr std::array meanings{
        Meaning{"40001", Kind::Conflict, "other transactions came in between"},
        Meaning{"40003", Kind::Lost, "what became of the statement is not known"},
        Meaning{"40P01", Kind::Conflict, "it and another transaction waited for each other"},
        Meaning{"0A000", Kind::Lost, "the schema changed while a statement was prepared"},
        Meaning{"25006", Kind::ReadOnly, "the database can only be read"},
        Meaning{"08", Kind::Lost, "the connection was lost"},
        Meaning{"57P01", Kind::Lost, "the database ended the connection"},
        Meaning{"57P02", Kind::Lost, "the database ended the connection"},
        Meaning{"57P03", Kind::Lost, "the database is starting or stopping"},
        Meaning{"57P05", Kind::Lost, "the database ended the idle connection"},
        Meaning{"25P03", Kind::Lost, "the database ended the idle transaction"},
        Meaning{"55P03", Kind::Locked, "others held a row or a table for too long"},
        Meaning{"57014", Kind::Busy, "the statement took too long"},
        Meaning{"53100", Kind::Full, "there is no room on the database's disk"},
        Meaning{"53", Kind::Busy, "the database has no connection or memory left"},
        Meaning{"XX001", Kind::Damaged, "the database is damaged"},
        Meaning{"XX002", Kind::Damaged, "an index of the database is damaged"},
        Meaning{"22", Kind::Constraint, "a value does not fit its column"},
        Meaning{"23", Kind::Constraint, "a row breaks a rule of the schema"},
        Meaning{"P0001", Kind::Constraint, "a trigger of the schema refused a row"},
        Meaning{"42501", Kind::Unusable, "this user of the database lacks a right"},
        Meaning{"42P01", Kind::Unusable, "a table is missing"},
        Meaning{"42P07", Kind::Unusable, "a part of the schema is there already"},
        Meaning{"42710", Kind::Unusable, "a part of the schema is there already"},
        Meaning{"", Kind::Unusable, "the statement failed"},
    };
    const auto *const meaning = std::ranges::find_if(
        meanings, [&](const Meaning &candidate) { return sqlstate.starts_with(candidate.begin); });
    return {meaning->kind, std::string{meaning->text} + " (SQLSTATE " + sqlstate + ")", sqlstate};
}

DatabaseError lostConnection(const std::string &sqlstate)
{
    using Kind = DatabaseError::Kind;
    const std::string text = "the connection to the database was lost";
    constexpr auto connectionFailure = "08006"; // of the SQL standard
    return sqlstate.empty() ? DatabaseError{Kind::Lost, text, connectionFailure}
                            : DatabaseError{Kind::Lost, text + " (SQLSTATE " + sqlstate + ")", sqlstate};
}

} // namespace clockwell::server
