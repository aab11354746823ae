#pragma once

#include "net/Errors.h"

namespace clockwell {

/// Why there is no position, with a message for the user.
class LocationError final : public UserFacingError
{
public:
    enum class Kind {
        Denied, // also: restricted by the owner of the device
        Timeout,
        Unavailable,
    };
    explicit LocationError(Kind theKind) : kind(theKind) {}
    QString text() const override;

    Kind kind;
};

} // namespace clockwell
