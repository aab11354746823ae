#include "PunchFixture.h"
#include "TestDatabase.h"
#include "server/auth/Tokens.h"
#include "server/storage/PostgresEngine.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>

namespace clockwell::server::test {

namespace {

using Kind = DatabaseError::Kind;

long long rowsThere(Connection &connection)
{
    return connection.value<long long>("SELECT COUNT(*) FROM companies");
}

void addOne(Connection &connection)
{
    const std::string id = newId();
    connection.execute("INSERT INTO companies (id, name, code) VALUES (:id, 'Name', :code)", id, id);
}

/// Adds a company after counting them: of two that do so at once, one has not seen the other.
void countAndAdd(Connection &connection)
{
    rowsThere(connection);
    addOne(connection);
}

} // namespace

class PostgresRetryTest : public testing::Test
{
protected:
    PostgresRetryTest()
    {
        database.write([](Connection &connection) {
            connection.execute("CREATE TABLE cells (id BIGINT PRIMARY KEY, amount BIGINT)");
            connection.execute("INSERT INTO cells VALUES (1, 0), (2, 0)");
        });
    }

    /// Adds a company in a transaction of `where` that has to run again, and one of another program before.
    void addedAfterAnother(Database &where)
    {
        int runs = 0;
        where.write([&](Connection &connection) {
            rowsThere(connection);
            if (++runs == 1)
                other.write(countAndAdd);
            addOne(connection);
        });
        EXPECT_EQ(runs, 2);
    }

    TempFolder folder;
    std::vector<std::string> reasons; ///< why transactions of the next were run again
    Database database{databaseIn(folder),
                      {.timeout = std::chrono::seconds{60},
                       .onRetry = [this](std::string_view sqlstate) { reasons.emplace_back(sqlstate); }}};
    Database other{databaseIn(folder), {.timeout = std::chrono::seconds{60}}};
};

TEST_F(PostgresRetryTest, WorkIsRunAgainWhenOthersCameInBetween)
{
    int runs = 0;
    const long long seen = database.write([&](Connection &connection) {
        const long long count = rowsThere(connection);
        if (++runs == 1)
            other.write(countAndAdd);
        addOne(connection);
        return count;
    });
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(seen, 1) << "the result is that of the run that was recorded";
    EXPECT_EQ(reasons, std::vector<std::string>{"40001"});
    EXPECT_EQ(database.read(rowsThere), 2);
}

TEST_F(PostgresRetryTest, ConflictThatShowsAtCommitIsRunAgain)
{
    int runs = 0;
    int done = 0;
    database.write([&](Connection &connection) {
        rowsThere(connection);
        addOne(connection);
        if (++runs == 1)
            other.write(countAndAdd);
        ++done;
    });
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(done, 2) << "no statement failed";
    EXPECT_EQ(database.read(rowsThere), 2);
}

TEST_F(PostgresRetryTest, WorkIsRunAgainAsOftenAsOthersComeInBetween)
{
    constexpr int conflicts = 15;
    int runs = 0;
    database.write([&](Connection &connection) {
        rowsThere(connection);
        if (++runs <= conflicts)
            other.write(countAndAdd);
        addOne(connection);
    });
    EXPECT_EQ(runs, conflicts + 1);
    EXPECT_EQ(database.read(rowsThere), conflicts + 1);
}

TEST_F(PostgresRetryTest, GivesUpWhenTheWaitIsOverAndRecordsNothing)
{
    int runs = 0;
    const Wait wait{Wait::Clock::now() + std::chrono::milliseconds{500}, false};
    try {
        database.write(wait, [&](Connection &connection) {
            rowsThere(connection);
            ++runs;
            other.write(countAndAdd);
            addOne(connection);
        });
        FAIL() << "it was recorded";
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), Kind::Busy);
        EXPECT_EQ(error.sqlstate(), "40001");
    }
    EXPECT_EQ(database.read(rowsThere), runs) << "only the others'";
    addedAfterAnother(database);
    EXPECT_EQ(database.read(rowsThere), runs + 2) << "it does not keep its turn";
}

TEST_F(PostgresRetryTest, ThoseWhoMetRunAgainOneAtATime)
{
    constexpr std::size_t many = 8;
    Database shared{databaseIn(folder), {.timeout = std::chrono::seconds{60}, .readers = many}};
    std::barrier met{many};
    std::atomic<int> runningAgain = 0;
    std::atomic<int> most = 0;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < many; ++i)
        threads.emplace_back([&] {
            shared.write([&, runs = 0](Connection &connection) mutable {
                rowsThere(connection);
                if (++runs == 1) {
                    met.arrive_and_wait();
                } else {
                    const int running = ++runningAgain;
                    for (int known = most; running > known && !most.compare_exchange_weak(known, running);)
                        ;
                    std::this_thread::sleep_for(std::chrono::milliseconds{10}); // room for others to come in
                    --runningAgain;
                }
                addOne(connection);
            });
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(most, 1);
    EXPECT_EQ(database.read(rowsThere), static_cast<long long>(many));
}

TEST_F(PostgresRetryTest, WaitForALockDoesNotHoldUpThoseWhoMet)
{
    auto holder = connectPostgres(databaseIn(folder), std::chrono::seconds{60});
    holder->execute("BEGIN");
    holder->execute("UPDATE cells SET amount = 1 WHERE id = 1");
    std::atomic<bool> waits = false;
    std::thread waiting{[&] {
        database.write([&, runs = 0](Connection &connection) mutable {
            rowsThere(connection);
            if (++runs == 1)
                other.write(countAndAdd);
            addOne(connection); // fails the first time
            waits = true;
            connection.execute("UPDATE cells SET amount = amount + 1 WHERE id = 1");
        });
    }};
    while (!waits)
        std::this_thread::yield();
    addedAfterAnother(database);
    EXPECT_EQ(holder->value<long long>("SELECT amount FROM cells WHERE id = 1"), 1) << "still held";
    holder->commit();
    waiting.join();
    EXPECT_EQ(database.read(rowsThere), 4);
}

TEST_F(PostgresRetryTest, TwoThatWaitForEachOtherBothSucceed)
{
    std::atomic<int> begun = 0;
    const auto addBoth = [&](Database &where, long long first, long long second) {
        where.write([&, isFirstRun = true](Connection &connection) mutable {
            connection.execute("UPDATE cells SET amount = amount + 1 WHERE id = :id", first);
            if (std::exchange(isFirstRun, false))
                for (++begun; begun < 2;)
                    std::this_thread::yield();
            connection.execute("UPDATE cells SET amount = amount + 1 WHERE id = :id", second);
        });
    };
    std::thread one{[&] { addBoth(database, 1, 2); }};
    addBoth(other, 2, 1);
    one.join();
    EXPECT_EQ(database.read([](Connection &connection) {
        return connection.value<long long>("SELECT SUM(amount) FROM cells");
    }),
              4);
}

TEST_F(PostgresRetryTest, OtherErrorsAreNotRunAgain)
{
    int runs = 0;
    EXPECT_THROW(database.write([&](Connection &connection) {
        ++runs;
        connection.execute("INSERT INTO cells VALUES (1, 0)");
    }),
                 DatabaseError);
    EXPECT_EQ(runs, 1);
}

TEST_F(PostgresRetryTest, FailedStatementCannotBeCommittedByPassingOverIt)
{
    try {
        database.write([](Connection &connection) {
            addOne(connection);
            EXPECT_THROW(connection.execute("INSERT INTO cells VALUES (1, 0)"), DatabaseError);
        });
        FAIL() << "it says that it was recorded";
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), Kind::Unusable);
    }
    EXPECT_EQ(database.read(rowsThere), 0);
}

TEST_F(PostgresRetryTest, StatementsArePreparedAgainAfterAChangeOfTheSchema)
{
    const auto read = [](Connection &connection) {
        return connection.first<SingleColumn<std::string>>("SELECT * FROM cells ORDER BY id")->value;
    };
    Database single{databaseIn(folder), {.connections = 1}};
    EXPECT_EQ(single.read([](Connection &connection) {
        return connection.value<long long>("SELECT COUNT(*) FROM (SELECT * FROM cells) AS c");
    }),
              2);
    EXPECT_EQ(single.read(read), "1");
    other.write([](Connection &connection) { connection.execute("ALTER TABLE cells DROP COLUMN amount"); });
    EXPECT_EQ(single.read(read), "1");
}

} // namespace clockwell::server::test
