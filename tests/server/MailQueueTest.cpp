#include "server/mail/MailQueue.h"

#include "LogCatcher.h"
#include "Within.h"

#include <gtest/gtest.h>

#include <optional>
#include <regex>
#include <string>
#include <thread>

namespace clockwell::server::test {

namespace {

/// Fails as often as it is told, then keeps what it gets.
class ScriptedDelivery : public MailDelivery
{
public:
    struct Record
    {
        std::atomic<int> attempts{0};
        std::atomic<int> delivered{0};
    };
    ScriptedDelivery(Record &record, int failures, DeliveryError::Kind kind, std::string reason = "scripted")
        : m_record(record), m_failures(failures), m_kind(kind), m_reason(std::move(reason))
    {}
    void deliver(const Mail &, const std::atomic<bool> &) override
    {
        if (++m_record.attempts <= m_failures)
            throw DeliveryError{m_kind, m_reason};
        ++m_record.delivered;
    }
    void check(const std::atomic<bool> &) override {}

private:
    Record &m_record;
    int m_failures;
    DeliveryError::Kind m_kind;
    std::string m_reason;
};

MailQueueOptions quick(std::size_t pauses)
{
    MailQueueOptions options;
    options.pauses.assign(pauses, std::chrono::milliseconds{10});
    return options;
}

} // namespace

TEST(MailQueueTest, TransientFailuresAreTriedAgain)
{
    ScriptedDelivery::Record record;
    MailQueue queue{std::make_unique<ScriptedDelivery>(record, 2, DeliveryError::Kind::Transient), quick(3)};
    queue.post({});
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return record.delivered == 1; }));
    EXPECT_EQ(record.attempts, 3);
}

TEST(MailQueueTest, BacklogIsWhatWaitsAndSinceWhen)
{
    ScriptedDelivery::Record record;
    MailQueueOptions options = quick(1);
    options.firstPause = options.longestPause = std::chrono::hours{1};
    options.flushLimit = std::chrono::milliseconds{1};
    MailQueue queue{std::make_unique<ScriptedDelivery>(record, 1000, DeliveryError::Kind::Down), options};
    EXPECT_EQ(queue.backlog().messages, 0U);
    EXPECT_EQ(queue.backlog().oldest.count(), 0);
    queue.post({});
    queue.post({});
    EXPECT_TRUE(within(
        std::chrono::seconds{20}, [&] { return queue.backlog().messages == 2; }));
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return queue.backlog().oldest.count() >= 1; }));
}

TEST(MailQueueTest, QuotesOfAMailServerDoNotBreakTheLine)
{
    const LogCatcher log;
    ScriptedDelivery::Record record;
    MailQueue queue{
        std::make_unique<ScriptedDelivery>(record, 1, DeliveryError::Kind::Transient, "it said \"no=1\"\n"),
        quick(1)};
    queue.post({});
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return record.delivered == 1; }));
    EXPECT_NE(log.text().find(R"(what="it said \"no=1\"?")"), std::string::npos) << log.text();
}

TEST(MailQueueTest, AttemptsAreBounded)
{
    ScriptedDelivery::Record record;
    {
        MailQueue queue{std::make_unique<ScriptedDelivery>(record, 1000, DeliveryError::Kind::Transient),
                        quick(3)};
        queue.post({});
        EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return record.attempts == 4; }));
    }
    EXPECT_EQ(record.attempts, 4);
}

TEST(MailQueueTest, PermanentFailuresAreNotTriedAgainAndStopNobodyElse)
{
    ScriptedDelivery::Record record;
    {
        MailQueue queue{std::make_unique<ScriptedDelivery>(record, 1, DeliveryError::Kind::Permanent),
                        quick(3)};
        queue.post({});
        queue.post({});
    }
    EXPECT_EQ(record.attempts, 2);
    EXPECT_EQ(record.delivered, 1);
}

TEST(MailQueueTest, WhatWaitsIsTriedOnceMoreAtTheEnd)
{
    ScriptedDelivery::Record record;
    {
        MailQueueOptions options;
        options.pauses = {std::chrono::minutes{5}};
        MailQueue queue{std::make_unique<ScriptedDelivery>(record, 1, DeliveryError::Kind::Transient),
                        options};
        queue.post({});
        EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return record.attempts == 1; }));
    }
    EXPECT_EQ(record.delivered, 1);
}

/// Writes down for whom it gets messages, and holds the first one until it is told to go on.
class HeldDelivery : public MailDelivery
{
public:
    struct Record
    {
        std::atomic<bool> isHolding{false};
        std::atomic<bool> mayGoOn{false};
        std::string order; // read it when the queue is gone
    };
    explicit HeldDelivery(Record &record) : m_record(record) {}
    void deliver(const Mail &mail, const std::atomic<bool> &) override
    {
        m_record.isHolding = true;
        while (!m_record.mayGoOn)
            std::this_thread::sleep_for(std::chrono::milliseconds{1});
        m_record.order += mail.to;
    }
    void check(const std::atomic<bool> &) override {}

private:
    Record &m_record;
};

/// The queue while its only delivery is under way, so that it guesses a second for each message.
class HeldMailQueueTest : public testing::Test
{
protected:
    MailQueue &start(MailQueueOptions options)
    {
        options.deliveries = 1;
        MailQueue &queue = m_queue.emplace(std::make_unique<HeldDelivery>(m_record), std::move(options));
        queue.post({"a", "", ""});
        EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return m_record.isHolding.load(); }));
        return queue;
    }
    void post(int messages, const std::string &to, Precedence precedence)
    {
        for (int i = 0; i < messages; ++i)
            m_queue->post({to, "", "", precedence});
    }
    bool isOpen(Precedence precedence) const { return m_queue->excess(precedence).count() == 0; }
    /// For whom it delivered what waits.
    std::string finish()
    {
        m_record.mayGoOn = true;
        m_queue.reset();
        return m_record.order;
    }
    ~HeldMailQueueTest() override { finish(); }

private:
    HeldDelivery::Record m_record;
    std::optional<MailQueue> m_queue;
};

TEST_F(HeldMailQueueTest, PeoplesOwnGoBeforeStrangersThatCameEarlier)
{
    MailQueue &queue = start({});
    for (const char *stranger : {"b", "c", "d"})
        queue.post({stranger, "", "", Precedence::Stranger});
    for (const char *owner : {"X", "Y"})
        queue.post({owner, "", "", Precedence::Own});
    EXPECT_EQ(finish(), "aXYbcd");
}

TEST_F(HeldMailQueueTest, LinesOfOwnersAndOfStrangersAreBoundedApart)
{
    MailQueueOptions options;
    options.capacity = 4;
    start(options);
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(isOpen(Precedence::Stranger));
        post(1, "s", Precedence::Stranger);
    }
    EXPECT_FALSE(isOpen(Precedence::Stranger));
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(isOpen(Precedence::Own));
        post(1, "o", Precedence::Own);
    }
    EXPECT_FALSE(isOpen(Precedence::Own));
    EXPECT_EQ(finish(), "aoooossss");
}

TEST_F(HeldMailQueueTest, OwnersAreNotPromisedWhatStrangersWerePromised)
{
    MailQueueOptions options;
    options.longestWait = std::chrono::minutes{20};
    options.life = std::chrono::minutes{21};
    start(options);
    post(500, "s", Precedence::Stranger);
    EXPECT_TRUE(isOpen(Precedence::Own));
    post(800, "o", Precedence::Own);
    EXPECT_FALSE(isOpen(Precedence::Own)) << "500 and 800 seconds are more than a code lives";
}

TEST_F(HeldMailQueueTest, StrangersForWhomThereWasNoRoomKeepNoOwnerFromACode)
{
    MailQueueOptions options;
    options.longestWait = std::chrono::minutes{20};
    options.life = std::chrono::minutes{40};
    start(options);
    post(2500, "s", Precedence::Stranger); // more than their half of the wait, and more than a code lives
    EXPECT_FALSE(isOpen(Precedence::Stranger));
    EXPECT_TRUE(isOpen(Precedence::Own));
}

TEST_F(HeldMailQueueTest, MessageFarBeyondTheCapacityIsDroppedAndSaid)
{
    const LogCatcher log;
    MailQueueOptions options;
    options.capacity = 1;
    MailQueue &queue = start(options);
    for (const char *to : {"b", "c", "d"}) // the second may have been promised while the first was
        queue.post({to, "", ""});
    EXPECT_EQ(finish(), "abc");
    EXPECT_NE(log.text().find("event=mailDropped reason=queueFull messages=1"), std::string::npos);
}

namespace {

/// The sum of the messages of all lines that say it.
int droppedTooLate(const std::string &log)
{
    static const std::regex line{"event=mailDropped reason=tooLate messages=([0-9]+)"};
    int sum = 0;
    for (std::sregex_iterator match{log.begin(), log.end(), line}; match != std::sregex_iterator{}; ++match)
        sum += std::stoi((*match)[1]);
    return sum;
}

} // namespace

TEST(MailQueueTest, ClosedWayKeepsMessagesForTheirLifeThenSaysHowManyAreDropped)
{
    const LogCatcher log;
    ScriptedDelivery::Record record;
    MailQueueOptions options = quick(0);
    options.life = std::chrono::milliseconds{1500};
    options.longestWait = std::chrono::milliseconds{500};
    options.firstPause = options.longestPause = std::chrono::milliseconds{50};
    MailQueue queue{std::make_unique<ScriptedDelivery>(record, 1'000'000, DeliveryError::Kind::Down),
                    options};
    queue.post({});
    queue.post({});
    EXPECT_TRUE(within(
        std::chrono::seconds{20}, [&] { return queue.excess(Precedence::Own).count() > 0; }));
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return record.attempts > 1; }));
    // One that is being tried at that moment is dropped the next time.
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return droppedTooLate(log.text()) == 2; }));
    // Nothing waits now that could show that the way is open again: it is found out without a message.
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return queue.excess(Precedence::Own).count() == 0; }));
}

} // namespace clockwell::server::test
