#pragma once

#include <string>

namespace clockwell::server {

/// Whether the name of a database is a URL of PostgreSQL ("postgresql://..." or "postgres://...", in the form
/// that libpq reads) and not a SQLite file.
bool isPostgresUrl(const std::string &database);

/// What is wrong with a URL, as a sentence that repeats nothing of it, for it may hold a password; empty when
/// libpq can read it.
std::string postgresUrlProblem(const std::string &url);

/// Whether a URL that libpq can read holds a password, for the database or for the key of a certificate.
bool holdsPassword(const std::string &url);

/// The name of a database for messages and logs: a file as it is, a URL without all but host, port and name.
std::string databaseLabel(const std::string &database);

/// What libpq is given: the URL, and what it leaves open of how soon a host that is gone is noticed. Throws
/// DatabaseError for a URL that libpq cannot read.
std::string postgresConnectText(const std::string &url);

} // namespace clockwell::server
