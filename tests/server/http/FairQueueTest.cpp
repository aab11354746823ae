#include "server/http/FairQueue.h"

#include <gtest/gtest.h>

#include <vector>

namespace clockwell::server {

class FairQueueTest : public testing::Test
{
protected:
    std::vector<int> popAll()
    {
        std::vector<int> all;
        while (const auto work = m_queue.pop())
            all.push_back(*work);
        return all;
    }

    FairQueue<int> m_queue;
};

TEST_F(FairQueueTest, OneGroupIsServedInItsOrder)
{
    for (int i = 0; i < 4; ++i)
        m_queue.push("a", "", i);
    EXPECT_EQ(m_queue.size(), 4U);
    EXPECT_EQ(popAll(), (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(m_queue.size(), 0U);
}

TEST_F(FairQueueTest, GroupsTakeTurns)
{
    for (int i = 0; i < 4; ++i)
        m_queue.push("flood", "", i);
    m_queue.push("one", "", 10);
    m_queue.push("two", "", 20);
    m_queue.push("two", "", 21);
    EXPECT_EQ(popAll(), (std::vector<int>{0, 10, 20, 1, 21, 2, 3}));
}

TEST_F(FairQueueTest, GroupThatComesBackGoesToTheEnd)
{
    m_queue.push("a", "", 1);
    m_queue.push("b", "", 2);
    EXPECT_EQ(m_queue.pop(), 1);
    m_queue.push("a", "", 3);
    EXPECT_EQ(popAll(), (std::vector<int>{2, 3}));
}

TEST_F(FairQueueTest, AheadAreTheOwnOnesAndAsManyOfEachOtherGroup)
{
    EXPECT_EQ(m_queue.aheadOf("a"), 0U);
    for (int i = 0; i < 100; ++i)
        m_queue.push("flood", "", i);
    EXPECT_EQ(m_queue.aheadOf("flood"), 100U);
    EXPECT_EQ(m_queue.aheadOf("a"), 1U);
    m_queue.push("a", "", 0);
    m_queue.push("a", "", 0);
    EXPECT_EQ(m_queue.aheadOf("a"), 5U);
    EXPECT_EQ(m_queue.aheadOf("b"), 2U);
    EXPECT_EQ(m_queue.aheadOf("flood"), 102U);
}

TEST_F(FairQueueTest, WaitingOnesAreCountedByGroupAndByAccount)
{
    m_queue.push("a", "kim", 1);
    m_queue.push("b", "kim", 2);
    m_queue.push("b", "", 3);
    EXPECT_EQ(m_queue.waitingOf("a"), 1U);
    EXPECT_EQ(m_queue.waitingOf("b"), 2U);
    EXPECT_EQ(m_queue.waitingFor("kim"), 2U);
    EXPECT_EQ(m_queue.waitingFor(""), 0U);
    m_queue.pop();
    EXPECT_EQ(m_queue.waitingOf("a"), 0U);
    EXPECT_EQ(m_queue.waitingFor("kim"), 1U);
    m_queue.pop();
    EXPECT_EQ(m_queue.waitingFor("kim"), 0U);
}

} // namespace clockwell::server
