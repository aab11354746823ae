#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <string>

namespace clockwell::server::test {

/// A reply as it came over the wire. Header names are in lower case.
struct Reply
{
    int status = 0; ///< 0: no complete reply came
    std::map<std::string, std::string> headers;
    std::string body;

    nlohmann::json json() const { return nlohmann::json::parse(body); }
    std::string error() const { return json().value("error", ""); }
    /// The text of the only message; empty when there are several.
    std::string message() const;
};

/// One request on a connection of its own to 127.0.0.1, with a limit of a minute.
/// `token` is sent as bearer token unless it is empty, `body` as JSON unless it is empty. `from` is the
/// client's own address, any in 127.0.0.0/8.
Reply send(std::uint16_t port, const std::string &method, const std::string &target,
           const std::string &token = {}, const std::string &body = {},
           const std::string &contentType = "application/json", const std::string &from = "127.0.0.1");

} // namespace clockwell::server::test
