#pragma once

#include "Message.h"

namespace clockwell::server {

/// Why this layer answers a request by itself: one row of a closed table, in the form of the API's error
/// bodies.
struct Refusal
{
    int status;
    const char *code; ///< the body's "error"
    const char
        *message; ///< for people; plain ASCII without quotes or backslashes, so that it needs no escaping
};

namespace refusals {
inline constexpr Refusal badRequest{400, "BAD_REQUEST", "The request is malformed."};
inline constexpr Refusal badTarget{400, "BAD_REQUEST", "The address of the request is malformed."};
inline constexpr Refusal cutShort{400, "BAD_REQUEST", "The request ended before it was complete."};
inline constexpr Refusal timeout{408, "REQUEST_TIMEOUT", "The request took too long to arrive."};
inline constexpr Refusal bodyTooLarge{413, "PAYLOAD_TOO_LARGE", "The request is too large."};
inline constexpr Refusal expectation{417, "EXPECTATION_FAILED",
                                     "The server cannot do what the request expects."};
inline constexpr Refusal throttled{429, "TOO_MANY_REQUESTS",
                                   "Too many requests. Please try again in a moment."};
inline constexpr Refusal headTooLarge{431, "HEADER_TOO_LARGE", "The header of the request is too large."};
inline constexpr Refusal internal{500, "INTERNAL", "Something went wrong on the server."};
inline constexpr Refusal coding{501, "NOT_IMPLEMENTED",
                                "The transfer coding of the request is not supported."};
inline constexpr Refusal crowded{503, "BUSY",
                                 "Too many people are signing in just now. Please try again in a moment."};
inline constexpr Refusal busy{503, "UNAVAILABLE", "The server is busy. Please try again in a moment."};
inline constexpr Refusal version{505, "VERSION_NOT_SUPPORTED",
                                 "The HTTP version of the request is not supported."};
} // namespace refusals

Response toResponse(const Refusal &refusal);
/// The same with a Retry-After header (whole seconds, at least 1).
Response toResponse(const Refusal &refusal, long retryAfterSeconds);

} // namespace clockwell::server
