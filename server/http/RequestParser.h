#pragma once

#include "HeadScanner.h"
#include "Message.h"
#include "Refusal.h"

#include <memory>
#include <optional>
#include <string_view>

namespace clockwell::server {

struct HttpOptions;

/// Turns the bytes of one request into a Request or a Refusal; does no I/O. The head is taken in one piece,
/// after it passed the HeadScanner; the caller can then look at it and decide before it feeds the body.
class RequestParser
{
public:
    /// `options` must outlive the parser.
    explicit RequestParser(const HttpOptions &options);
    ~RequestParser();
    RequestParser(const RequestParser &) = delete;
    RequestParser &operator=(const RequestParser &) = delete;

    /// Takes what it can from the front of `input` and returns how many bytes that were; what is left must
    /// come again, with more behind it. Stops at the end of the head, at the end of the request and at a
    /// refusal.
    std::size_t feed(std::string_view input);

    bool headComplete() const { return m_headComplete; }
    bool complete() const;
    /// Set when the request cannot be accepted; the connection must be closed then, its framing is lost.
    const std::optional<Refusal> &refusal() const { return m_refusal; }

    // Valid once headComplete():
    const Request &request() const { return m_request; } ///< without body until takeRequest()
    /// The X-Forwarded-For of all its lines, with commas between; nobody vouches for it.
    const std::string &forwardedFor() const { return m_forwardedFor; }
    bool isHead() const { return m_isHead; } ///< sent as HEAD, though request().method is "GET"
    bool isHttp10() const { return m_isHttp10; }
    bool keepAlive() const { return m_keepAlive; }
    bool expectsContinue() const { return m_expectsContinue; }

    /// For the log, at any time: "-" for what could not be read.
    const std::string &methodAsSent() const { return m_methodAsSent; }
    const std::string &path() const { return m_path; }

    /// Moves the request out; only when complete().
    Request takeRequest();

private:
    struct Parser; // keeps the heavy parser headers out of this file

    void refuse(const Refusal &refusal);
    std::size_t feedHead(std::string_view input);
    std::size_t feedBody(std::string_view input);
    void acceptHead(std::string_view head);
    std::optional<Refusal> checkFraming();
    std::optional<Refusal> readFields();

    const HttpOptions &m_options;
    std::unique_ptr<Parser> m_parser;
    HeadScanner m_scanner;
    Request m_request;
    std::string m_methodAsSent = "-";
    std::string m_path = "-";
    std::string m_forwardedFor;
    std::optional<Refusal> m_refusal;
    bool m_skippedEmptyLine = false;
    bool m_headComplete = false;
    bool m_isHead = false;
    bool m_isHttp10 = false;
    bool m_keepAlive = false;
    bool m_expectsContinue = false;
};

} // namespace clockwell::server
