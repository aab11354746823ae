#include "Client.h"

namespace clockwell::rush {

namespace asio = boost::asio;
namespace http = boost::beast::http;

namespace {

constexpr std::chrono::seconds totalLimit{60};
constexpr unsigned http11 = 11;

} // namespace

asio::awaitable<Answer> Client::send(Call call, std::string bearer, std::string body)
{
    const HttpRequest message = request(call, bearer, std::move(body));
    const Clock::time_point begin = Clock::now();
    const Clock::time_point end = begin + totalLimit;
    Answer answer;
    if (factsOf(call).isPost || !m_network.keepAlive) {
        std::optional<Connection> single;
        answer = co_await sendOn(single, message, end);
    } else {
        answer = co_await get(message, end);
    }
    // After a failure the app trusts no open connection.
    if (answer.failure != Failure::none)
        m_kept.reset();
    m_figures.add(call, answer, Clock::now() - begin);
    co_return answer;
}

/// A GET for which a kept connection gave nothing but its end is sent again, on a new one.
asio::awaitable<Answer> Client::get(const HttpRequest &request, Clock::time_point end)
{
    Answer answer{.failure = Failure::closed};
    if (m_kept && m_kept->isUsable())
        answer = co_await m_kept->exchange(request, end);
    if (answer.failure == Failure::closed && !answer.begun) {
        m_kept.reset();
        answer = co_await sendOn(m_kept, request, end);
    }
    if (!answer.keepAlive)
        m_kept.reset();
    co_return answer;
}

asio::awaitable<Answer> Client::sendOn(std::optional<Connection> &connection, const HttpRequest &request,
                                       Clock::time_point end)
{
    connection.emplace(m_executor);
    const Failure failure = co_await connection->open(m_network.server, m_network.from, end);
    if (failure != Failure::none)
        co_return Answer{.failure = failure};
    co_return co_await connection->exchange(request, end);
}

HttpRequest Client::request(Call call, const std::string &bearer, std::string body) const
{
    const CallFacts &facts = factsOf(call);
    HttpRequest message{facts.isPost ? http::verb::post : http::verb::get, facts.target, http11};
    message.set(http::field::host,
                m_network.server.address().to_string() + ':' + std::to_string(m_network.server.port()));
    message.set(http::field::user_agent, "Clockwell");
    message.set(http::field::accept_encoding, "deflate, gzip");
    if (call != Call::refresh) // it goes past the app's usual pipeline
        message.set(http::field::accept, "application/json");
    if (!bearer.empty())
        message.set(http::field::authorization, "Bearer " + bearer);
    if (facts.isPost) {
        message.set(http::field::content_type, "application/json");
        message.body() = std::move(body);
        message.prepare_payload();
    }
    return message;
}

} // namespace clockwell::rush
