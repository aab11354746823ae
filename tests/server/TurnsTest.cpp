#include "server/storage/Turns.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <latch>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace clockwell::server::test {

using std::chrono::milliseconds;

class TurnsTest : public testing::Test
{
protected:
    static Wait wait(milliseconds time, bool first = false) { return {Wait::Clock::now() + time, first}; }

    /// A thread that waits for its turn, notes its name and gives the turn on.
    void queue(const std::string &name, bool first)
    {
        m_threads.emplace_back([this, name, first] {
            if (!m_turns.take(wait(longest, first)))
                return;
            m_order.push_back(name); // turn by turn, so without a lock
            m_turns.give();
        });
        while (m_turns.waiting() < m_threads.size())
            std::this_thread::yield();
    }
    static void stayOnOneProcessor()
    {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(::sched_getcpu(), &one);
        static const cpu_set_t everyones = one; // that of the first who asks
        ::pthread_setaffinity_np(::pthread_self(), sizeof everyones, &everyones);
    }
    std::vector<std::string> finished()
    {
        for (std::thread &thread : m_threads)
            thread.join();
        m_threads.clear();
        return m_order;
    }

    static constexpr milliseconds longest{30'000};
    Turns m_turns{1};

private:
    std::vector<std::thread> m_threads;
    std::vector<std::string> m_order;
};

TEST_F(TurnsTest, WhoComesFirstGoesFirst)
{
    ASSERT_TRUE(m_turns.take(wait(longest)));
    for (const char *name : {"a", "b", "c", "d"})
        queue(name, false);
    m_turns.give();
    EXPECT_EQ(finished(), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST_F(TurnsTest, WhoGoesFirstGoesBeforeAllThatWait)
{
    ASSERT_TRUE(m_turns.take(wait(longest)));
    queue("a", false);
    queue("b", false);
    queue("renewal 1", true);
    queue("c", false);
    queue("renewal 2", true);
    m_turns.give();
    EXPECT_EQ(finished(), (std::vector<std::string>{"renewal 1", "renewal 2", "a", "b", "c"}));
}

TEST_F(TurnsTest, WhoGivesUpLeavesTheQueue)
{
    ASSERT_TRUE(m_turns.take(wait(longest)));
    EXPECT_FALSE(m_turns.take(wait(milliseconds{5})));
    EXPECT_FALSE(m_turns.take(wait(milliseconds{5}, true)));
    EXPECT_EQ(m_turns.waiting(), 0U);
    queue("a", false);
    m_turns.give();
    EXPECT_EQ(finished(), std::vector<std::string>{"a"});
    EXPECT_TRUE(m_turns.take(wait(milliseconds{0})));
}

// On one processor, and where waking does not interrupt who runs, somebody who takes every turn as soon as it
// is over is always quicker than the one who wakes.
TEST_F(TurnsTest, NobodyIsOvertakenForLong)
{
    std::atomic<bool> over = false;
    std::thread greedy{[&] {
        stayOnOneProcessor();
        while (!over) {
            if (!m_turns.take(wait(longest)))
                return;
            std::this_thread::sleep_for(milliseconds{2});
            m_turns.give();
        }
    }};
    std::thread patient{[&] {
        stayOnOneProcessor();
        const sched_param none{};
        ::pthread_setschedparam(::pthread_self(), SCHED_BATCH, &none);
        const auto start = Wait::Clock::now();
        for (int turn = 0; turn < 10; ++turn) {
            EXPECT_TRUE(m_turns.take(wait(longest)));
            m_turns.give();
        }
        EXPECT_LT(Wait::Clock::now() - start, longest / 5);
    }};
    patient.join();
    over = true;
    greedy.join();
}

TEST_F(TurnsTest, TurnsThatEndTogetherAreTakenTogether)
{
    for (int round = 0; round < 100; ++round) {
        Turns two{2};
        ASSERT_TRUE(two.take(wait(longest)) && two.take(wait(longest)));
        std::latch both{2};
        std::vector<std::thread> threads;
        for (const bool first : {false, true})
            threads.emplace_back([&, first] {
                EXPECT_TRUE(two.take(wait(longest, first)));
                both.arrive_and_wait(); // for ever when the other one is not called
                two.give();
            });
        while (two.waiting() < 2)
            std::this_thread::yield();
        two.give();
        two.give();
        for (std::thread &thread : threads)
            thread.join();
    }
}

TEST_F(TurnsTest, AsManyAtOnceAsThereAreTurns)
{
    Turns three{3};
    std::atomic<int> inside = 0;
    std::atomic<int> most = 0;
    std::atomic<int> served = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 12; ++i)
        threads.emplace_back([&, i] {
            for (int turn = 0; turn < 50; ++turn) {
                if (!three.take(wait(longest, i % 3 == 0)))
                    continue;
                const int now = ++inside;
                for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
                }
                std::this_thread::yield();
                --inside;
                ++served;
                three.give();
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(served, 600);
    EXPECT_LE(most, 3);
}

} // namespace clockwell::server::test
