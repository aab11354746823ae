#include "server/storage/PostgresWriter.h"

#include "server/storage/PostgresError.h"
#include "server/storage/PostgresResult.h"

#include <array>
#include <charconv>
#include <utility>

namespace clockwell::server {

namespace {

constexpr std::size_t sendBytes = 64 * 1024; // at once

template <class Number>
void appendNumber(std::string &text, Number value)
{
    std::array<char, 32> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

/// With what has a meaning in the text format of COPY escaped.
void appendEscaped(std::string &text, std::string_view value)
{
    for (const char c : value) {
        switch (c) {
        case '\\':
            text += "\\\\";
            break;
        case '\t':
            text += "\\t";
            break;
        case '\n':
            text += "\\n";
            break;
        case '\r':
            text += "\\r";
            break;
        default:
            text += c;
        }
    }
}

struct Appender
{
    std::string &text;

    void operator()(std::monostate) const { text += "\\N"; }
    void operator()(long long value) const { appendNumber(text, value); }
    void operator()(double value) const { appendNumber(text, value); } // as short as its bits allow
    void operator()(std::string_view value) const { appendEscaped(text, value); }
    void operator()(StoredBytes) const
    {
        throw DatabaseError{DatabaseError::Kind::Constraint, "a value is no text"};
    }
};

} // namespace

PostgresWriter::PostgresWriter(Connection &connection, const std::string &into)
    : m_handle(handleOf(connection.session()))
{
    const PostgresResult result{::PQexec(m_handle, ("COPY " + into + " FROM STDIN").c_str())};
    requireStatus(m_handle, result, PGRES_COPY_IN);
}

PostgresWriter::~PostgresWriter()
{
    if (m_isFinished)
        return;
    ::PQputCopyEnd(m_handle, "given up");
    takeResult(m_handle);
}

void PostgresWriter::add(const StoredRow &row)
{
    const char *before = "";
    for (const StoredValue &value : row) {
        m_unsent += std::exchange(before, "\t");
        std::visit(Appender{m_unsent}, value);
    }
    m_unsent += '\n';
    if (m_unsent.size() >= sendBytes)
        send();
}

void PostgresWriter::send()
{
    if (::PQputCopyData(m_handle, m_unsent.data(), static_cast<int>(m_unsent.size())) != 1)
        throw lostConnection({});
    m_unsent.clear();
}

void PostgresWriter::finish()
{
    send();
    m_isFinished = true;
    if (::PQputCopyEnd(m_handle, nullptr) != 1)
        throw lostConnection({});
    requireStatus(m_handle, takeResult(m_handle), PGRES_COMMAND_OK);
}

} // namespace clockwell::server
