#pragma once

#include <QByteArray>
#include <QString>

#include <exception>
#include <optional>

namespace clockwell {

/// An error whose text can be shown to the user unchanged. All exceptions of the client derive from it.
class UserFacingError : public std::exception
{
public:
    virtual QString text() const = 0;
    /// The same text in UTF-8. It is created on demand under a mutex, because one exception object can be
    /// rethrown on several threads.
    const char *what() const noexcept override;

private:
    mutable QByteArray m_what;
};

/// The server refused the request or sent an unexpected reply; also used for the client's own session errors.
class APIError final : public UserFacingError
{
public:
    explicit APIError(QString theMessage, std::optional<QString> theCode = {}, std::optional<int> status = {})
        : message(std::move(theMessage)), code(std::move(theCode)), httpStatus(status)
    {}
    QString text() const override { return message; }

    QString message;
    /// The server's machine-readable code, or the client's own "NO_REFRESH" and "REFRESH_FAILED".
    std::optional<QString> code;
    std::optional<int> httpStatus;
};

/// The network delivered no usable reply.
class TransportError final : public UserFacingError
{
public:
    enum class Kind {
        TimedOut,
        CannotConnect,
        HostNotFound,
        Offline,
        ConnectionLost,
        UntrustedCertificate,
        ReplyTooLarge,
        Cancelled,
        Broken, // the peer does not speak HTTP, or a body cannot be decompressed
    };
    explicit TransportError(Kind theKind) : kind(theKind) {}
    QString text() const override;

    Kind kind;
};

/// A reply that cannot be decoded as the expected record.
class DecodingError final : public UserFacingError
{
public:
    explicit DecodingError(QString description) : m_description(std::move(description)) {}
    QString text() const override { return m_description; }

private:
    QString m_description;
};

/// A request body that JSON cannot express: a number that is not finite, or text that is not valid UTF-16.
class EncodingError final : public UserFacingError
{
public:
    explicit EncodingError(QString description) : m_description(std::move(description)) {}
    QString text() const override { return m_description; }

private:
    QString m_description;
};

/// The text to show to the user for a caught exception.
QString errorText(const std::exception &error);

} // namespace clockwell
