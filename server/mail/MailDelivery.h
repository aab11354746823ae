#pragma once

#include "server/mail/Mail.h"

#include <atomic>
#include <stdexcept>
#include <string>

namespace clockwell::server {

/// A message was not delivered. The text is for the log: it names no address and nothing of the content.
class DeliveryError : public std::runtime_error
{
public:
    enum class Kind {
        Transient, ///< this message, this time
        Permanent, ///< this message for good
        Down,      ///< the way is closed for every message: the mail server, its sign-in or the disk fails
    };

    DeliveryError(Kind kind, const std::string &what) : std::runtime_error(what), m_kind(kind) {}
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

/// Where messages go. Safe on several threads.
class MailDelivery
{
public:
    MailDelivery() = default;
    virtual ~MailDelivery() = default;
    MailDelivery(const MailDelivery &) = delete;
    MailDelivery &operator=(const MailDelivery &) = delete;

    /// Hands one message over; may block for some seconds, and gives up soon once `giveUp` is set. Throws
    /// DeliveryError.
    virtual void deliver(const Mail &mail, const std::atomic<bool> &giveUp) = 0;

    /// Finds out without a message whether the way is open. Throws DeliveryError when it is not.
    virtual void check(const std::atomic<bool> &giveUp) = 0;
};

} // namespace clockwell::server
