#pragma once

#include "Contains.h"
#include "ServerProcess.h"
#include "World.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>

namespace clockwell::server::test {

/// A database file with an office and one employee, and the commands that copy it.
class BackupFixture : public testing::Test
{
protected:
    BackupFixture() { fill(file); }

    static void fill(const std::string &name)
    {
        Database database{name};
        addCompany(database);
        addOffice(database, {});
        addEmployee(database, {});
    }
    static ProcessResult admin(const std::string &database, std::vector<std::string> words)
    {
        words.insert(words.begin(), {"admin", "--database", database});
        return runServer(words);
    }
    ProcessResult admin(const std::vector<std::string> &words) const { return admin(file, words); }
    ProcessResult restore(const std::string &backup) const { return admin({"restore", backup, "--yes"}); }

    static void execute(const std::string &name, const std::string &sql) { Connection{name, 1}.execute(sql); }
    static std::string query(const std::string &name, const std::string &sql)
    {
        return Connection{name, 1}.value<std::string>(sql);
    }
    static std::string nameIn(const std::string &name)
    {
        return query(name, "SELECT full_name FROM employees");
    }
    static void rename(const std::string &database, const std::string &fullName)
    {
        execute(database, "UPDATE employees SET full_name = '" + fullName + "'");
    }
    /// How many files there are, to see that a command left nothing behind.
    std::size_t fileCount() const
    {
        const std::filesystem::directory_iterator files{folder.file("")};
        return static_cast<std::size_t>(std::distance(files, std::filesystem::directory_iterator{}));
    }
    /// Overwrites the first page of a table. Nobody has the file open.
    static void damage(const std::string &name, const std::string &table)
    {
        execute(name, "PRAGMA journal_mode = DELETE"); // nothing stays in a write-ahead log
        const auto page = std::stoll(
            query(name, "SELECT CAST(rootpage AS TEXT) FROM sqlite_master WHERE name = '" + table + "'"));
        constexpr long long pageBytes = 4096;
        std::fstream stream{name, std::ios::binary | std::ios::in | std::ios::out};
        stream.seekp((page - 1) * pageBytes);
        stream << std::string(pageBytes, '\xff');
    }

    TempFolder folder;
    std::string file = folder.file("clockwell.db");
    std::string copy = folder.file("copy.db");
};

/// As long as it lives, this process and those it starts cannot write beyond so many bytes of a file.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

} // namespace clockwell::server::test
