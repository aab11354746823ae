#include "server/storage/Schema.h"

namespace clockwell::server {

namespace {

// Conventions, for SQLite and PostgreSQL alike: identifiers are random texts, instants are milliseconds UTC
// (columns ending in _at), days are "yyyy-MM-dd", times of day are minutes from midnight, booleans are 0
// and 1.

std::vector<std::string> organisationTables()
{
    return {
        "CREATE TABLE institutes ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " name VARCHAR(200) NOT NULL,"
        " code VARCHAR(64) NOT NULL UNIQUE)",
        "CREATE TABLE offices ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " institute_id VARCHAR(36) NOT NULL REFERENCES institutes (id),"
        " name VARCHAR(200) NOT NULL,"
        " latitude DOUBLE PRECISION NOT NULL CHECK (latitude BETWEEN -90 AND 90),"
        " longitude DOUBLE PRECISION NOT NULL CHECK (longitude BETWEEN -180 AND 180),"
        " radius_meters BIGINT NOT NULL CHECK (radius_meters > 0),"
        " max_accuracy_meters BIGINT NOT NULL CHECK (max_accuracy_meters > 0),"
        " time_zone VARCHAR(64) NOT NULL,"
        " check_in_minute BIGINT NOT NULL CHECK (check_in_minute BETWEEN 0 AND 1439),"
        " check_out_minute BIGINT NOT NULL CHECK (check_out_minute BETWEEN 1 AND 1440),"
        " grace_minutes BIGINT NOT NULL CHECK (grace_minutes >= 0),"
        " full_day_minutes BIGINT NOT NULL CHECK (full_day_minutes >= 0),"
        " working_weekdays BIGINT NOT NULL CHECK (working_weekdays BETWEEN 0 AND 127)," // bit 0 is Monday
        " CHECK (check_in_minute < check_out_minute))",
        "CREATE TABLE holidays ("
        " office_id VARCHAR(36) NOT NULL REFERENCES offices (id),"
        " day CHAR(10) NOT NULL,"
        " name VARCHAR(200) NOT NULL,"
        " PRIMARY KEY (office_id, day))",
        "CREATE TABLE employees ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " institute_id VARCHAR(36) REFERENCES institutes (id),"
        " office_id VARCHAR(36) REFERENCES offices (id),"
        " full_name VARCHAR(200) NOT NULL,"
        " email VARCHAR(254) NOT NULL,"
        " email_key VARCHAR(254) NOT NULL UNIQUE," // the address in lower case
        " phone VARCHAR(64),"
        " password_hash VARCHAR(128) NOT NULL,"
        " role VARCHAR(32) NOT NULL,"
        " status VARCHAR(16) NOT NULL CHECK (status IN ('PENDING', 'APPROVED', 'REJECTED', 'SUSPENDED')),"
        " email_verified BIGINT NOT NULL CHECK (email_verified IN (0, 1)),"
        " joined_on CHAR(10) NOT NULL,"
        " created_at BIGINT NOT NULL)",
        "CREATE TABLE leaves ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " employee_id VARCHAR(36) NOT NULL REFERENCES employees (id),"
        " first_day CHAR(10) NOT NULL,"
        " last_day CHAR(10) NOT NULL,"
        " reason VARCHAR(200),"
        " CHECK (first_day <= last_day))",
        "CREATE INDEX leaves_by_employee ON leaves (employee_id, last_day)",
    };
}

std::vector<std::string> attendanceTables()
{
    return {
        // The office's rules are kept with the day: changing the hours later does not rewrite what was.
        "CREATE TABLE attendance ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " employee_id VARCHAR(36) NOT NULL REFERENCES employees (id),"
        " work_date CHAR(10) NOT NULL,"
        " scheduled_start_at BIGINT NOT NULL,"
        " scheduled_end_at BIGINT NOT NULL,"
        " grace_minutes BIGINT NOT NULL,"
        " full_day_minutes BIGINT NOT NULL,"
        " check_in_at BIGINT NOT NULL,"
        " check_in_distance DOUBLE PRECISION NOT NULL,"
        " check_out_at BIGINT,"
        " check_out_distance DOUBLE PRECISION,"
        " UNIQUE (employee_id, work_date))",
        "CREATE TABLE punches ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " attendance_id VARCHAR(36) NOT NULL REFERENCES attendance (id),"
        " type VARCHAR(3) NOT NULL CHECK (type IN ('IN', 'OUT')),"
        " at BIGINT NOT NULL,"
        " device_id VARCHAR(128) NOT NULL,"
        " latitude DOUBLE PRECISION NOT NULL,"
        " longitude DOUBLE PRECISION NOT NULL,"
        " accuracy DOUBLE PRECISION NOT NULL,"
        " distance DOUBLE PRECISION NOT NULL,"
        " UNIQUE (attendance_id, type))",
    };
}

std::vector<std::string> sessionTables()
{
    return {
        // One sign-in on one device; all tokens that follow from it are its family.
        "CREATE TABLE token_families ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " employee_id VARCHAR(36) NOT NULL REFERENCES employees (id),"
        " device_id VARCHAR(128) NOT NULL,"
        " created_at BIGINT NOT NULL,"
        " generation BIGINT NOT NULL," // of the newest refresh token that was used; 0 at sign-in
        " used_hash CHAR(64),"         // that token's hash
        " used_at BIGINT,"
        " revoked_at BIGINT)",
        "CREATE INDEX token_families_by_employee ON token_families (employee_id)",
        "CREATE TABLE refresh_tokens ("
        " hash CHAR(64) NOT NULL PRIMARY KEY,"
        " family_id VARCHAR(36) NOT NULL REFERENCES token_families (id),"
        " generation BIGINT NOT NULL,"
        " expires_at BIGINT NOT NULL)",
        "CREATE INDEX refresh_tokens_by_family ON refresh_tokens (family_id)",
        "CREATE INDEX refresh_tokens_by_expiry ON refresh_tokens (expires_at)",
        "CREATE TABLE access_tokens ("
        " hash CHAR(64) NOT NULL PRIMARY KEY,"
        " family_id VARCHAR(36) NOT NULL REFERENCES token_families (id),"
        " expires_at BIGINT NOT NULL)",
        "CREATE INDEX access_tokens_by_family ON access_tokens (family_id)",
        "CREATE INDEX access_tokens_by_expiry ON access_tokens (expires_at)",
    };
}

std::vector<std::string> firstSchema()
{
    std::vector<std::string> all = organisationTables();
    for (const auto &tables : {attendanceTables(), sessionTables()})
        all.insert(all.end(), tables.begin(), tables.end());
    return all;
}

std::vector<std::string> codeTables()
{
    return {
        // The key is no reference: addresses without an account have codes too.
        "CREATE TABLE codes ("
        " email_key VARCHAR(254) NOT NULL PRIMARY KEY,"
        " purpose VARCHAR(16) NOT NULL CHECK (purpose IN ('VERIFY', 'RESET')),"
        " hash VARCHAR(128) NOT NULL," // argon2id
        " expires_at BIGINT NOT NULL,"
        " tries BIGINT NOT NULL)", // that were judged, right or wrong
        "CREATE INDEX codes_by_expiry ON codes (expires_at)",
    };
}

/// The tables of days and punches anew, for a day can be corrected: a day that was voided has no check-in, a
/// corrected time no distance, and a voided day may be checked in to again. Both at once, so that no row ever
/// refers to one that is not there.
std::vector<std::string> correctableAttendance()
{
    return {
        "CREATE TABLE new_attendance ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " employee_id VARCHAR(36) NOT NULL REFERENCES employees (id),"
        " work_date CHAR(10) NOT NULL,"
        " scheduled_start_at BIGINT NOT NULL,"
        " scheduled_end_at BIGINT NOT NULL,"
        " grace_minutes BIGINT NOT NULL,"
        " full_day_minutes BIGINT NOT NULL,"
        " check_in_at BIGINT," // what counts; none on a day that was voided
        " check_in_distance DOUBLE PRECISION,"
        " check_out_at BIGINT,"
        " check_out_distance DOUBLE PRECISION,"
        " UNIQUE (employee_id, work_date),"
        " CHECK (check_in_at IS NOT NULL OR check_out_at IS NULL))",
        "INSERT INTO new_attendance (id, employee_id, work_date, scheduled_start_at, scheduled_end_at,"
        " grace_minutes, full_day_minutes, check_in_at, check_in_distance, check_out_at, check_out_distance)"
        " SELECT id, employee_id, work_date, scheduled_start_at, scheduled_end_at, grace_minutes,"
        " full_day_minutes, check_in_at, check_in_distance, check_out_at, check_out_distance FROM attendance",
        "CREATE TABLE new_punches ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " attendance_id VARCHAR(36) NOT NULL REFERENCES new_attendance (id),"
        " ordinal BIGINT NOT NULL," // counts the day's punches from 1, in the order in which they came
        " type VARCHAR(3) NOT NULL CHECK (type IN ('IN', 'OUT')),"
        " at BIGINT NOT NULL,"
        " device_id VARCHAR(128) NOT NULL,"
        " latitude DOUBLE PRECISION NOT NULL,"
        " longitude DOUBLE PRECISION NOT NULL,"
        " accuracy DOUBLE PRECISION NOT NULL,"
        " distance DOUBLE PRECISION NOT NULL,"
        " UNIQUE (attendance_id, ordinal))",
        "INSERT INTO new_punches (id, attendance_id, ordinal, type, at, device_id, latitude, longitude,"
        " accuracy, distance) SELECT id, attendance_id, CASE type WHEN 'IN' THEN 1 ELSE 2 END, type, at,"
        " device_id, latitude, longitude, accuracy, distance FROM punches",
        "DROP TABLE punches",
        "DROP TABLE attendance",
        "ALTER TABLE new_attendance RENAME TO attendance",
        "ALTER TABLE new_punches RENAME TO punches",
    };
}

std::vector<std::string> auditTable()
{
    return {
        // No references: entries outlive what they are about.
        "CREATE TABLE audit ("
        " number INTEGER NOT NULL PRIMARY KEY," // counts from 1
        " at BIGINT NOT NULL,"
        " os_user VARCHAR(256) NOT NULL,"
        " administrator VARCHAR(254)," // an e-mail address
        " command VARCHAR(64) NOT NULL,"
        " subject VARCHAR(254) NOT NULL,"
        " subject_id VARCHAR(36) NOT NULL,"
        " day CHAR(10),"
        " reason VARCHAR(200),"
        " value_before TEXT," // JSON, as is the next
        " value_after TEXT)",
        "CREATE INDEX audit_by_subject ON audit (subject_id, day)",
        "CREATE TRIGGER audit_is_not_changed BEFORE UPDATE ON audit"
        " BEGIN SELECT RAISE(ABORT, 'the audit is only added to'); END",
        "CREATE TRIGGER audit_is_not_deleted BEFORE DELETE ON audit"
        " BEGIN SELECT RAISE(ABORT, 'the audit is only added to'); END",
        // REPLACE deletes without asking the trigger above.
        "CREATE TRIGGER audit_is_not_replaced BEFORE INSERT ON audit"
        " WHEN EXISTS (SELECT 1 FROM audit WHERE number = NEW.number)"
        " BEGIN SELECT RAISE(ABORT, 'the audit is only added to'); END",
    };
}

std::vector<std::string> correctionTables()
{
    std::vector<std::string> all = correctableAttendance();
    const auto audit = auditTable();
    all.insert(all.end(), audit.begin(), audit.end());
    return all;
}

std::vector<std::string> sessionEnds()
{
    return {
        // When the last token of a session expires, or when it was ended: then it can be removed.
        "ALTER TABLE token_families ADD COLUMN ends_at BIGINT NOT NULL DEFAULT 0",
        "UPDATE token_families SET ends_at = COALESCE(revoked_at, (SELECT MAX(r.expires_at)"
        " FROM refresh_tokens r WHERE r.family_id = token_families.id), 0)",
        "CREATE INDEX token_families_by_end ON token_families (ends_at)",
    };
}

std::vector<std::string> strangerTables()
{
    return {
        // Codes that were sent before this step are asked for once more.
        "DROP TABLE codes",
        "CREATE TABLE codes ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " email_key VARCHAR(254) NOT NULL," // no reference: addresses without an account have codes too
        " network VARCHAR(64) NOT NULL,"    // from which it was asked for
        " purpose VARCHAR(16) NOT NULL CHECK (purpose IN ('VERIFY', 'RESET')),"
        " sign_up_id VARCHAR(36)," // to which it belongs; it may be gone
        " salt VARCHAR(64) NOT NULL,"
        " hash CHAR(64) NOT NULL," // argon2id of the first code
        " second_hash CHAR(64) NOT NULL,"
        " expires_at BIGINT NOT NULL)",
        "CREATE INDEX codes_by_address ON codes (email_key, expires_at)",
        "CREATE INDEX codes_by_expiry ON codes (expires_at)",
        "CREATE TABLE wrong_codes ("
        " email_key VARCHAR(254) NOT NULL PRIMARY KEY,"
        " amount DOUBLE PRECISION NOT NULL," // of the allowance that was spent, at the time
        " at BIGINT NOT NULL)",
        "CREATE INDEX wrong_codes_by_time ON wrong_codes (at)",
        // The sign-ups with an address until one is verified; the first one has its employee's identifier.
        "CREATE TABLE sign_ups ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " employee_id VARCHAR(36) NOT NULL REFERENCES employees (id),"
        " full_name VARCHAR(200) NOT NULL,"
        " email VARCHAR(254) NOT NULL,"
        " phone VARCHAR(64),"
        " institute_id VARCHAR(36) REFERENCES institutes (id),"
        " password_hash VARCHAR(128) NOT NULL,"
        " network VARCHAR(64) NOT NULL,"
        " created_at BIGINT NOT NULL)",
        "CREATE INDEX sign_ups_by_employee ON sign_ups (employee_id, created_at)",
        // Who may be removed one day: nobody verified the address, no administrator touched the account.
        "CREATE INDEX employees_left ON employees (created_at)"
        " WHERE email_verified = 0 AND status = 'PENDING' AND office_id IS NULL",
    };
}

std::vector<std::string> lastDays()
{
    return {
        "ALTER TABLE employees ADD COLUMN last_day CHAR(10)", // of the employment; none while no end is known
    };
}

std::vector<std::string> limitTables()
{
    return {
        // What was spent of allowances: the sum of a subject's rows, less what has grown again between them.
        // One row each time, for transactions that change the same row cannot be recorded at once.
        "CREATE TABLE spendings ("
        " id VARCHAR(36) NOT NULL PRIMARY KEY,"
        " kind VARCHAR(16) NOT NULL,"        // of the allowance
        " subject VARCHAR(254) NOT NULL,"    // whose it is: a network address
        " amount DOUBLE PRECISION NOT NULL," // below zero when something was given back
        " at BIGINT NOT NULL,"
        " ends_at BIGINT NOT NULL)", // when all of it has grown again, unless more is spent
        "CREATE INDEX spendings_by_subject ON spendings (kind, subject, at)",
        "CREATE INDEX spendings_by_end ON spendings (kind, ends_at)",
        "CREATE TABLE counted_events ("
        " kind VARCHAR(16) NOT NULL,"
        " subject VARCHAR(254) NOT NULL," // an e-mail address, or what was typed as one
        " network VARCHAR(64) NOT NULL,"  // from which it came; empty when that plays no part
        " number BIGINT NOT NULL,"        // counts from 1: of two that come at once, one has to count again
        " at BIGINT NOT NULL,"
        " ends_at BIGINT NOT NULL," // when it does not count any more
        " PRIMARY KEY (kind, subject, network, number))",
        "CREATE INDEX counted_events_by_end ON counted_events (ends_at)",
        // The codes whose first part was the last entry for an address from a network, if both are needed.
        "CREATE TABLE entered_codes ("
        " email_key VARCHAR(254) NOT NULL,"
        " network VARCHAR(64) NOT NULL,"
        " code_ids TEXT NOT NULL," // with blanks between them; there may be none
        " ends_at BIGINT NOT NULL,"
        " PRIMARY KEY (email_key, network))",
        "CREATE INDEX entered_codes_by_end ON entered_codes (ends_at)",
        // What all servers of one database have to draw alike, and nobody else may know.
        "CREATE TABLE secrets ("
        " name VARCHAR(32) NOT NULL PRIMARY KEY,"
        " value VARCHAR(64) NOT NULL)",
    };
}

std::vector<std::string> companyNames()
{
    return {
        // What clients call an institute is a company everywhere else.
        "ALTER TABLE institutes RENAME TO companies",
        "ALTER TABLE offices RENAME COLUMN institute_id TO company_id",
        "ALTER TABLE employees RENAME COLUMN institute_id TO company_id",
        "ALTER TABLE sign_ups RENAME COLUMN institute_id TO company_id",
    };
}

} // namespace

const std::vector<std::vector<std::string>> &schemaSteps()
{
    static const std::vector<std::vector<std::string>> steps{
        firstSchema(),    codeTables(), correctionTables(), sessionEnds(),
        strangerTables(), lastDays(),   companyNames(),     limitTables()};
    return steps;
}

} // namespace clockwell::server
