#include "server/auth/Sodium.h"

#include <sodium.h>

#include <stdexcept>

namespace clockwell::server {

void requireSodium()
{
    if (sodium_init() < 0)
        throw std::runtime_error{"The cryptography library cannot be used on this machine."};
}

} // namespace clockwell::server
