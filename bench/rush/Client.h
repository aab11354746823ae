#pragma once

#include "Call.h"
#include "Connection.h"
#include "Figures.h"

#include <optional>

namespace clockwell::rush {

/// Where a client is in the network.
struct Network
{
    boost::asio::ip::tcp::endpoint server;
    boost::asio::ip::address_v4 from;
    bool keepAlive = true;
};

/// The app's way to send a request: GETs on one connection as long as the server keeps it, each POST once on
/// a connection of its own, at most 60 seconds for each. Every request is counted in the figures.
class Client
{
public:
    Client(boost::asio::any_io_executor executor, Network network, Figures &figures)
        : m_executor(std::move(executor)), m_network(network), m_figures(figures)
    {}

    /// Sends a bearer token or a body unless it is empty. One request at a time.
    boost::asio::awaitable<Answer> send(Call call, std::string bearer, std::string body);

private:
    HttpRequest request(Call call, const std::string &bearer, std::string body) const;
    boost::asio::awaitable<Answer> get(const HttpRequest &request, Clock::time_point end);
    boost::asio::awaitable<Answer> sendOn(std::optional<Connection> &connection, const HttpRequest &request,
                                          Clock::time_point end);

    boost::asio::any_io_executor m_executor;
    Network m_network;
    Figures &m_figures;
    std::optional<Connection> m_kept;
};

} // namespace clockwell::rush
