#include "HttpConnection.h"

#include "PeerAddress.h"
#include "ResponseText.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <ctime>
#include <stdexcept>

namespace clockwell::server {

namespace asio = boost::asio;
using asio::awaitable;

namespace {

constexpr std::size_t readSize = 16 * 1024;
constexpr std::size_t idleReadSize = 1024; // kept by each idle connection; most requests fit into it
constexpr std::size_t lingerBytes = 8 * 1024 * 1024; // what a peer may still send after its last answer
constexpr long busyRetrySeconds = 1;
constexpr int noAnswer = 0; // the status in the log of a request whose connection was closed instead
constexpr const char *supportedMethods = "GET, HEAD, POST, OPTIONS";

const auto withoutThrowing = asio::as_tuple(asio::use_awaitable);

long wholeSeconds(std::chrono::milliseconds time)
{
    return static_cast<long>(std::chrono::ceil<std::chrono::seconds>(time).count());
}

} // namespace

HttpConnection::HttpConnection(Stream::Socket socket, const asio::ip::address &peer,
                               const std::string &seatNetwork, ServerContext &context, Seat::Kind kind)
    : m_context(context),
      m_stream(std::move(socket), context.tls.get()),
      m_deadline(m_stream.socket()),
      m_peerAddress(peer),
      m_isProxy(context.proxies.contain(peer)),
      m_peer(m_stream.socket().native_handle()),
      m_seat(context.seating, seatNetwork, kind, [this] { cutOff(); })
{
    boost::system::error_code ignored;
    m_stream.socket().set_option(asio::ip::tcp::no_delay(true), ignored);
    setClient(peer);
}

void HttpConnection::setClient(const asio::ip::address &client)
{
    m_remoteAddress = client.to_string();
    m_network = networkOf(client);
}

// g++ 12 lays out a coroutine's frame wrongly (and the program crashes) when it awaits within a condition. So
// every result here is given a name before it is looked at.

awaitable<void> HttpConnection::run()
{
    const bool secured = co_await handshake();
    if (secured) {
        co_await serveRequests();
        co_await close();
    }
    cutOff();
}

awaitable<bool> HttpConnection::handshake()
{
    if (!m_stream.hasTls())
        co_return true;
    m_deadline.setAt(Clock::now() + m_context.options.headDeadline);
    const auto [error] =
        co_await m_stream.tls().async_handshake(asio::ssl::stream_base::server, withoutThrowing);
    co_return !error;
}

awaitable<void> HttpConnection::serveRequests()
{
    do {
        const bool arrived = co_await awaitRequest();
        if (!arrived)
            co_return;
        co_await serveRequest();
        m_firstRequest = false;
    } while (m_keepAlive && !m_broken && !m_seat.isGuest());
}

bool HttpConnection::nothingArrived()
{
    boost::system::error_code error;
    return (m_idle || m_buffer.empty()) && (m_stream.socket().available(error) == 0 || error);
}

void HttpConnection::stopSoon()
{
    m_stopping = true;
    boost::system::error_code ignored;
    if (m_idle && nothingArrived())
        m_stream.socket().cancel(ignored);
}

void HttpConnection::cutOff()
{
    m_broken = true;
    m_deadline.clear();
    m_peer.release();
    boost::system::error_code ignored;
    m_stream.socket().close(ignored);
}

/// False when no further request comes: the peer closed or was idle for too long, or the server stops.
awaitable<bool> HttpConnection::awaitRequest()
{
    if (!m_buffer.empty())
        co_return true; // sent ahead, with an earlier request
    if (m_stopping && nothingArrived())
        co_return false;
    std::string().swap(m_buffer); // 20,000 idle connections would keep as many times 16 KiB
    const auto &options = m_context.options;
    m_deadline.setAt(Clock::now() + (m_firstRequest ? options.headDeadline : options.idleDeadline));
    m_seat.wait();
    m_idle = true;
    const bool arrived = co_await readSome();
    m_idle = false;
    m_seat.wait(); // it has just been heard of
    co_return arrived;
}

awaitable<void> HttpConnection::serveRequest()
{
    m_requestId = m_context.ids.next();
    m_requestStart = Clock::now();
    m_parser.emplace(m_context.options);
    m_keepAlive = false;
    const Response response = co_await answer();
    m_keepAlive = m_keepAlive && !response.unanswered;
    const Encoded encoded = response.unanswered ? Encoded{{}, noAnswer} : encode(response);
    const std::size_t bytes = co_await write(encoded.text);
    const auto duration =
        std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - m_requestStart);
    m_context.log.answered(m_requestId, m_parser->methodAsSent(), m_parser->path(), encoded.status, duration,
                           bytes);
    countFailure(encoded.status);
    m_parser.reset();
}

awaitable<Response> HttpConnection::answer()
{
    m_lane = Lane::SignedIn;
    m_canFlood = !m_isProxy; // whose a request is that cannot be read, a proxy's connection does not tell
    const auto headRefusal = co_await readHead();
    if (headRefusal)
        co_return refuse(*headRefusal);
    m_keepAlive = m_parser->keepAlive();
    if (m_isProxy)
        setClient(m_context.proxies.clientOf(m_peerAddress, m_parser->forwardedFor()));
    m_lane = m_context.lanes.laneOf(m_parser->request());
    m_canFlood = m_lane == Lane::SignedIn && m_parser->request().authorization.empty();
    if (auto response = answerAtOnce()) {
        // A body that nobody reads would be taken for the next request.
        m_keepAlive = m_keepAlive && m_parser->complete();
        co_return std::move(*response);
    }
    const auto bodyRefusal = co_await readBody();
    if (bodyRefusal)
        co_return refuse(*bodyRefusal);
    m_deadline.clear();
    m_seat.hold();
    Request request = m_parser->takeRequest();
    request.remoteAddress = m_remoteAddress;
    request.requestId = m_requestId;
    co_return co_await m_context.lanes.run(m_lane, std::move(request), m_network, m_peer);
}

/// After a refusal the framing of what follows is unknown, so the connection ends with it. A renewal that did
/// not arrive whole is left unanswered: the app would take the refusal for the end of its session.
Response HttpConnection::refuse(const Refusal &refusal)
{
    m_keepAlive = false;
    Response response = toResponse(refusal);
    response.unanswered = m_lane == Lane::Renewal && !m_parser->refusal();
    return response;
}

void HttpConnection::countFailure(int status)
{
    constexpr int firstFailure = 400, firstServerError = 500;
    if (m_canFlood && status >= firstFailure && status < firstServerError &&
        status != refusals::throttled.status)
        m_context.failures.take(m_network, TokenBuckets::Clock::now());
}

/// What needs no worker: the health check, OPTIONS, a client that fails too often, and a guest.
std::optional<Response> HttpConnection::answerAtOnce()
{
    const Request &request = m_parser->request();
    if (request.path == "/health" && request.method == "GET")
        return Response{200, R"({"status":"ok"})", "application/json", {}};
    if (m_seat.isGuest() && m_lane != Lane::Renewal)
        return toResponse(refusals::busy, busyRetrySeconds);
    const auto wait = m_canFlood ? m_context.failures.waitFor(m_network, TokenBuckets::Clock::now())
                                 : std::chrono::milliseconds::zero();
    if (wait > wait.zero())
        return toResponse(refusals::throttled, wholeSeconds(wait));
    if (request.method == "OPTIONS")
        return Response{204, {}, {}, {{"Allow", supportedMethods}}};
    return std::nullopt;
}

awaitable<std::optional<Refusal>> HttpConnection::readHead()
{
    m_deadline.setAt(m_requestStart + m_context.options.headDeadline);
    co_return co_await fillParser(&RequestParser::headComplete);
}

awaitable<std::optional<Refusal>> HttpConnection::readBody()
{
    if (m_parser->expectsContinue() && !m_parser->complete() && m_buffer.empty())
        co_await write("HTTP/1.1 100 Continue\r\n\r\n");
    m_deadline.setAt(m_requestStart + m_context.options.requestDeadline);
    co_return co_await fillParser(&RequestParser::complete);
}

/// Reads until the parser has what is asked for; else says why it never will.
awaitable<std::optional<Refusal>> HttpConnection::fillParser(bool (RequestParser::*isReady)() const)
{
    while (true) {
        const std::size_t used = m_parser->feed(m_buffer);
        m_buffer.erase(0, used);
        if (m_parser->refusal())
            co_return m_parser->refusal();
        if (((*m_parser).*isReady)())
            co_return std::nullopt;
        if (used > 0 && !m_buffer.empty())
            continue;
        const bool arrived = co_await readSome();
        if (!arrived)
            co_return m_deadline.expired() ? refusals::timeout : refusals::cutShort;
    }
}

/// Appends what arrives next to the buffer. False on the end of the stream, an error or an expired deadline.
awaitable<bool> HttpConnection::readSome()
{
    const std::size_t before = m_buffer.size();
    const std::size_t room = m_idle ? idleReadSize : readSize;
    m_buffer.resize(before + room);
    const auto [error, count] =
        co_await m_stream.async_read_some(asio::buffer(m_buffer.data() + before, room), withoutThrowing);
    m_buffer.resize(before + count);
    co_return !error && !m_deadline.expired();
}

HttpConnection::Encoded HttpConnection::encode(const Response &response)
{
    m_keepAlive = m_keepAlive && !m_stopping && !m_context.draining && !m_seat.isGuest();
    const bool parsed = m_parser && m_parser->headComplete();
    const ResponseFraming framing{m_keepAlive, parsed && m_parser->isHttp10(), parsed && m_parser->isHead()};
    try {
        return {responseText(response, framing, std::time(nullptr)), response.status};
    } catch (const std::invalid_argument &error) {
        m_context.log.handlerFailed(m_requestId, error.what());
        const Response failure = toResponse(refusals::internal);
        return {responseText(failure, framing, std::time(nullptr)), failure.status};
    }
}

/// Returns the bytes written; fewer than all break the connection.
awaitable<std::size_t> HttpConnection::write(std::string text)
{
    m_deadline.setAt(Clock::now() + m_context.options.writeDeadline);
    const auto [error, count] = co_await asio::async_write(m_stream, asio::buffer(text), withoutThrowing);
    m_broken = m_broken || error;
    co_return count;
}

/// Says goodbye and lets the peer read its last answer: closing a socket with unread input would make the
/// system send a reset, which throws away what the peer has not read yet.
awaitable<void> HttpConnection::close()
{
    if (m_broken)
        co_return;
    m_seat.wait();
    m_deadline.setAt(Clock::now() + m_context.options.lingerDeadline);
    if (m_stream.hasTls())
        co_await m_stream.tls().async_shutdown(withoutThrowing);
    boost::system::error_code ignored;
    m_stream.socket().shutdown(asio::socket_base::shutdown_send, ignored);
    std::array<char, 4096> discarded{};
    for (std::size_t total = 0; total < lingerBytes && !m_deadline.expired();) {
        const auto [error, count] =
            co_await m_stream.socket().async_read_some(asio::buffer(discarded), withoutThrowing);
        if (error)
            break;
        total += count;
    }
}

} // namespace clockwell::server
