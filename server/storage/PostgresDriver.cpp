#include "server/storage/Driver.h"
#include "server/storage/PostgresError.h"
#include "server/storage/PostgresResult.h"

#include <boost/algorithm/string/trim.hpp>
#include <poll.h>
#include <soci/postgresql/soci-postgresql.h>
#include <sys/socket.h>

#include <algorithm>
#include <string_view>

namespace clockwell::server {

// SOCI's library does not export what the sanitizer would check the type of the backend with.
__attribute__((no_sanitize("vptr"))) PGconn *handleOf(soci::session &session)
{
    return static_cast<soci::postgresql_session_backend *>(session.get_backend())->conn_;
}

namespace {

/// Why no connection can be made: what libpq says behind SOCI's sentence, in one line.
std::string reasonOf(const soci::soci_error &error)
{
    std::string text = error.get_error_message();
    text.erase(0, text.find('\n') + 1);
    text.erase(text.find_last_not_of(" .\n") + 1);
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\t'; }, ' ');
    return text;
}

using Clock = std::chrono::steady_clock;

/// Whether all of the answer to what was sent has come, or cannot come any more.
bool isAnswered(PGconn *connection, Clock::time_point until)
{
    while (::PQisBusy(connection) != 0) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
        constexpr std::chrono::milliseconds longest = std::chrono::hours{1}; // fits poll()
        pollfd input{::PQsocket(connection), POLLIN, 0};
        const int ready =
            left.count() > 0 ? ::poll(&input, 1, static_cast<int>(std::min(left, longest).count())) : 0;
        if (ready == 0 && Clock::now() >= until)
            return false;
        if (::PQconsumeInput(connection) == 0)
            return true;
    }
    return true;
}

class PostgresDriver : public Driver
{
public:
    const soci::backend_factory &factory() const override { return soci::postgresql; }

    DatabaseError translated(soci::session *session) const override
    {
        const bool isLost = session != nullptr && ::PQstatus(handleOf(*session)) != CONNECTION_OK;
        try {
            throw;
        } catch (const soci::postgresql_soci_error &error) {
            // Blank when libpq itself could not send or receive.
            const std::string sqlstate = boost::trim_copy(error.sqlstate());
            return isLost || sqlstate.empty() ? lostConnection(sqlstate) : postgresError(sqlstate);
        } catch (const soci::soci_error &error) {
            if (isLost)
                return lostConnection({});
            if (session == nullptr)
                return {DatabaseError::Kind::Unreachable, reasonOf(error)};
            return {DatabaseError::Kind::Unusable, error.get_error_message()};
        }
    }

    void prepare(soci::session &session) const override
    {
        // It would print to standard error what PostgreSQL remarks, such as that a table is there already.
        ::PQsetNoticeProcessor(
            handleOf(session), [](void * /*nothing*/, const char * /*text*/) {}, nullptr);
    }
    bool isReady(soci::session &session) const override
    {
        PGconn *handle = handleOf(session);
        return ::PQstatus(handle) == CONNECTION_OK && ::PQtransactionStatus(handle) == PQTRANS_IDLE;
    }
    bool takesNul() const override { return false; }
    bool keepsFailedStatements() const override { return true; }

    /// PostgreSQL itself sets no end to the time for which it waits for a synchronous standby. Nor may it be
    /// asked to stop waiting: it would call the transaction recorded when the standby has nothing of it.
    void commit(soci::session &session, Clock::time_point until) const override
    {
        PGconn *handle = handleOf(session);
        if (::PQsendQuery(handle, "COMMIT") != 0 && !isAnswered(handle, until))
            ::shutdown(::PQsocket(handle), SHUT_RDWR); // from now on libpq finds the connection lost
        const PostgresResult result = takeResult(handle);
        requireStatus(handle, result, PGRES_COMMAND_OK);
        if (std::string_view{::PQcmdStatus(result.get())} != "COMMIT")
            throw DatabaseError{DatabaseError::Kind::Unusable, "a statement of the transaction had failed"};
    }
};

} // namespace

const Driver &postgresDriver()
{
    static const PostgresDriver driver;
    return driver;
}

} // namespace clockwell::server
