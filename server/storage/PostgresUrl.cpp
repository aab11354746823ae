#include "server/storage/PostgresUrl.h"

#include "server/storage/DatabaseError.h"

#include <libpq-fe.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace clockwell::server {

namespace {

struct OptionsDeleter
{
    void operator()(PQconninfoOption *options) const { ::PQconninfoFree(options); }
};
using Options = std::unique_ptr<PQconninfoOption, OptionsDeleter>;

std::string parameterOf(const Options &options, std::string_view keyword)
{
    for (const PQconninfoOption *option = options.get(); option->keyword != nullptr; ++option)
        if (option->keyword == keyword)
            return option->val == nullptr ? std::string{} : option->val;
    return {};
}

/// Null when the URL cannot be read. What libpq says of it then is dropped: it repeats parts of the URL. It
/// would take the rest of a password with an "@" or "/" for the host or the port, and name these in messages.
Options parsed(const std::string &url)
{
    char *error = nullptr;
    Options options{::PQconninfoParse(url.c_str(), &error)};
    ::PQfreemem(error);
    const bool isClear = options &&
                         parameterOf(options, "port").find_first_not_of("0123456789,") == std::string::npos &&
                         parameterOf(options, "host").find('@') == std::string::npos;
    return isClear ? std::move(options) : nullptr;
}

struct Default
{
    const char *keyword;
    const char *value;
    const char *variable; // of the environment, that sets it as well
};

// Requests wait meanwhile: without these, a host that vanished is noticed after minutes or hours.
constexpr std::array defaults{
    Default{"connect_timeout", "3", "PGCONNECT_TIMEOUT"}, // seconds, for each host
    Default{"tcp_user_timeout", "10000", nullptr},        // milliseconds until unanswered data ends it
    Default{"keepalives_idle", "10", nullptr},            // seconds
    Default{"keepalives_interval", "3", nullptr},         // seconds
    Default{"keepalives_count", "3", nullptr},
    Default{"client_encoding", "UTF8", nullptr},
    Default{"fallback_application_name", "clockwell-server", nullptr},
};

} // namespace

bool isPostgresUrl(const std::string &database)
{
    return database.starts_with("postgresql://") || database.starts_with("postgres://");
}

std::string postgresUrlProblem(const std::string &url)
{
    return parsed(url)
               ? ""
               : "The URL of the database cannot be read. It is of the form"
                 " postgresql://USER@HOST:PORT/NAME?sslmode=verify-full, with special characters as %XX.";
}

bool holdsPassword(const std::string &url)
{
    const Options options = parsed(url);
    return options &&
           (!parameterOf(options, "password").empty() || !parameterOf(options, "sslpassword").empty());
}

std::string databaseLabel(const std::string &database)
{
    if (!isPostgresUrl(database))
        return database;
    const Options options = parsed(database);
    if (!options)
        return "postgresql://...";
    std::string label = "postgresql://" + parameterOf(options, "host");
    if (const std::string port = parameterOf(options, "port"); !port.empty())
        label += ":" + port;
    if (const std::string name = parameterOf(options, "dbname"); !name.empty())
        label += "/" + name;
    if (const std::string service = parameterOf(options, "service"); !service.empty())
        label += "?service=" + service;
    return label;
}

std::string postgresConnectText(const std::string &url)
{
    const Options options = parsed(url);
    if (!options)
        throw DatabaseError{DatabaseError::Kind::Unusable, postgresUrlProblem(url)};
    std::string text = url;
    for (const Default &one : defaults) {
        const bool isSet = one.variable != nullptr && std::getenv(one.variable) != nullptr;
        if (isSet || !parameterOf(options, one.keyword).empty())
            continue;
        text += text.find('?') == std::string::npos ? '?' : '&';
        text += std::string{one.keyword} + '=' + one.value;
    }
    return text;
}

} // namespace clockwell::server
