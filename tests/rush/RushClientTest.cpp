#include "Client.h"
#include "ScriptedServer.h"

#include <boost/asio/co_spawn.hpp>
#include <gtest/gtest.h>

namespace clockwell::rush::test {

namespace asio = boost::asio;

namespace {

using Manner = ScriptedServer::Manner;

asio::awaitable<void> sendAll(Client &client, std::vector<Call> calls, std::vector<Answer> &answers)
{
    for (const Call call : calls) {
        const Answer answer = co_await client.send(call, "token", "{}");
        answers.push_back(answer);
    }
}

/// A server, and a phone at an address of its own.
class RushClientTest : public testing::Test
{
protected:
    /// Sends these requests, one after the other.
    std::vector<Answer> send(Manner manner, const std::vector<Call> &calls, bool keepAlive = true)
    {
        m_server.emplace(m_io, manner);
        Client client{m_io.get_executor(),
                      {m_server->endpoint(), asio::ip::make_address_v4("127.16.1.2"), keepAlive},
                      m_figures};
        std::vector<Answer> answers;
        asio::co_spawn(m_io, sendAll(client, calls, answers), [&](std::exception_ptr) { m_io.stop(); });
        m_io.run();
        return answers;
    }

    const std::vector<ScriptedServer::Arrival> &arrivals() const { return m_server->arrivals(); }

    asio::io_context m_io{1};
    std::optional<ScriptedServer> m_server;
    Figures m_figures;
};

} // namespace

TEST_F(RushClientTest, GetsShareAConnectionAndEachPostHasItsOwn)
{
    send(Manner::keeps, {Call::me, Call::today, Call::refresh, Call::distance, Call::punch});
    std::vector<std::size_t> connections;
    for (const auto &arrival : arrivals())
        connections.push_back(arrival.connection);
    EXPECT_EQ(connections, (std::vector<std::size_t>{0, 0, 1, 0, 2}));
}

TEST_F(RushClientTest, WithoutKeptConnectionsEachGetHasItsOwn)
{
    send(Manner::keeps, {Call::me, Call::today}, false);
    ASSERT_EQ(arrivals().size(), 2U);
    EXPECT_NE(arrivals()[0].connection, arrivals()[1].connection);
}

TEST_F(RushClientTest, ComesFromItsAddress)
{
    send(Manner::keeps, {Call::me, Call::punch});
    ASSERT_EQ(arrivals().size(), 2U);
    EXPECT_EQ(arrivals()[0].from, "127.16.1.2");
    EXPECT_EQ(arrivals()[1].from, "127.16.1.2");
}

TEST_F(RushClientTest, AGetIsSentOnANewConnectionWhenTheKeptOneIsClosed)
{
    const auto answers = send(Manner::closesAfterAnswer, {Call::me, Call::today});
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[1].status, 200);
    EXPECT_EQ(arrivals().size(), 2U);
}

TEST_F(RushClientTest, APostWithoutAnAnswerIsNotSentAgain)
{
    const auto answers = send(Manner::closesWithoutAnswer, {Call::punch});
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].status, 0);
    EXPECT_EQ(answers[0].failure, Failure::closed);
    EXPECT_EQ(arrivals().size(), 1U);
    EXPECT_EQ(m_figures.of(Call::punch).others.at("closed"), 1U);
}

TEST_F(RushClientTest, ARefreshSaysNeitherWhoAsksNorWhatIsAccepted)
{
    send(Manner::keeps, {Call::punch});
    EXPECT_NE(arrivals().front().head.find("Authorization: Bearer token\r\n"), std::string::npos);
    EXPECT_NE(arrivals().front().head.find("Accept: application/json\r\n"), std::string::npos);
    m_io.restart();
    send(Manner::keeps, {Call::refresh});
    EXPECT_EQ(arrivals().front().head.find("Accept:"), std::string::npos);
}

} // namespace clockwell::rush::test
