#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace clockwell::server::bench {

/// Beast alone: one thread that reads each request whole and answers it with the same JSON text. Throws
/// std::exception.
class BareServer
{
public:
    explicit BareServer(std::string body);
    BareServer(const BareServer &) = delete;
    BareServer &operator=(const BareServer &) = delete;
    ~BareServer();

    std::uint16_t port() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace clockwell::server::bench
