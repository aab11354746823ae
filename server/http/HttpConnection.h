#pragma once

#include "Deadline.h"
#include "PeerWatch.h"
#include "RequestParser.h"
#include "Seating.h"
#include "ServerContext.h"
#include "Stream.h"

#include <boost/asio/awaitable.hpp>

#include <memory>
#include <optional>
#include <string>

namespace clockwell::server {

/// One connection: reads a request, has it answered, writes the answer, and again, one request at a time;
/// what the peer sends meanwhile waits in the socket. Lives on the I/O thread, as long as its run() does.
class HttpConnection
{
public:
    using Clock = std::chrono::steady_clock;

    /// `peer` is the other end's address and `seatNetwork` the network that the seat was granted to;
    /// `context` must outlive the connection. A guest's one request is served if it is a renewal, and gets
    /// 503 if not.
    HttpConnection(Stream::Socket socket, const boost::asio::ip::address &peer,
                   const std::string &seatNetwork, ServerContext &context, Seat::Kind kind);

    /// Ends with the connection; the caller keeps the object alive until then.
    boost::asio::awaitable<void> run();

    /// The server stops: ends an idle connection now, a busy one after the answer under way.
    void stopSoon();
    /// Closes the socket; run() ends as soon as a handler that it waits for has returned.
    void cutOff();

private:
    struct Encoded
    {
        std::string text;
        int status;
    };

    boost::asio::awaitable<bool> handshake();
    boost::asio::awaitable<void> serveRequests();
    boost::asio::awaitable<bool> awaitRequest();
    boost::asio::awaitable<void> serveRequest();
    boost::asio::awaitable<Response> answer();
    boost::asio::awaitable<std::optional<Refusal>> readHead();
    boost::asio::awaitable<std::optional<Refusal>> readBody();
    boost::asio::awaitable<std::optional<Refusal>> fillParser(bool (RequestParser::*isReady)() const);
    boost::asio::awaitable<bool> readSome();
    boost::asio::awaitable<std::size_t> write(std::string text);
    boost::asio::awaitable<void> close();

    void setClient(const boost::asio::ip::address &client);
    std::optional<Response> answerAtOnce();
    void countFailure(int status);
    Response refuse(const Refusal &refusal);
    Encoded encode(const Response &response);
    bool nothingArrived();

    ServerContext &m_context;
    Stream m_stream;
    Deadline m_deadline;
    const boost::asio::ip::address m_peerAddress;
    const bool m_isProxy;        // a trusted one, so that each request can be another client's
    std::string m_remoteAddress; // of the client of the request under way
    std::string m_network;       // what limits by address count by
    PeerWatch m_peer;
    Seat m_seat;
    std::string m_buffer; // bytes read and not yet used, and while reading room for more
    std::string m_requestId;
    Clock::time_point m_requestStart{};
    std::optional<RequestParser> m_parser;
    Lane m_lane = Lane::SignedIn; // of the request under way, once its head is complete
    bool m_canFlood = true; // the request under way stands for nobody and its lane has no limits of its own
    bool m_firstRequest = true;
    bool m_idle = false; // waits for the first byte of a request
    bool m_stopping = false;
    bool m_keepAlive = false; // as far as the request under way is concerned
    bool m_broken = false;    // nothing more can be sent
};

} // namespace clockwell::server
