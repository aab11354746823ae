#include "RequestParser.h"

#include "HttpOptions.h"
#include "RequestTarget.h"

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <algorithm>

namespace clockwell::server {

namespace http = boost::beast::http;

struct RequestParser::Parser : http::request_parser<http::string_body>
{};

namespace {

std::string_view view(boost::beast::string_view text)
{
    return {text.data(), text.size()};
}

Refusal refusalFor(const boost::system::error_code &error)
{
    return error == http::error::body_limit ? refusals::bodyTooLarge : refusals::badRequest;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// A request line that is well-formed but for the version's number: "HTTP/" digit "." digit (RFC 9112,
/// section 2.3).
bool namesAVersion(std::string_view head)
{
    const std::string_view line = head.substr(0, head.find("\r\n"));
    const std::string_view version = line.substr(std::min(line.size(), line.rfind(' ') + 1));
    return std::count(line.begin(), line.end(), ' ') == 2 && version.size() == 8 &&
           version.substr(0, 5) == "HTTP/" && isDigit(version[5]) && version[6] == '.' && isDigit(version[7]);
}

} // namespace

RequestParser::RequestParser(const HttpOptions &options) : m_options(options), m_parser(new Parser)
{
    // The head's size is checked here before the parser sees it; the limit stays for the trailers of a
    // chunked body.
    m_parser->header_limit(static_cast<std::uint32_t>(options.headerLimit * 2));
    m_parser->body_limit(options.bodyLimit);
}

RequestParser::~RequestParser() = default;

bool RequestParser::complete() const
{
    return m_headComplete && !m_refusal && m_parser->is_done();
}

void RequestParser::refuse(const Refusal &refusal)
{
    m_refusal = refusal;
}

std::size_t RequestParser::feed(std::string_view input)
{
    if (m_refusal || complete())
        return 0;
    return m_headComplete ? feedBody(input) : feedHead(input);
}

std::size_t RequestParser::feedHead(std::string_view input)
{
    // RFC 9112, section 2.2: one empty line before a request is forgiven.
    if (!m_skippedEmptyLine && input.substr(0, 2) == "\r\n") {
        m_skippedEmptyLine = true;
        return 2;
    }
    if (!m_skippedEmptyLine && input == "\r")
        return 0;
    const auto result = m_scanner.scan(input.substr(0, m_options.headerLimit));
    if (result == HeadScanner::Result::Malformed) {
        refuse(refusals::badRequest);
    } else if (result == HeadScanner::Result::Complete) {
        acceptHead(input.substr(0, m_scanner.length()));
        return m_scanner.length();
    } else if (input.size() >= m_options.headerLimit) {
        refuse(refusals::headTooLarge);
    }
    return 0;
}

void RequestParser::acceptHead(std::string_view head)
{
    boost::system::error_code error;
    m_parser->eager(false);
    m_parser->put(boost::asio::buffer(head), error);
    std::optional<Refusal> refusal;
    if (error == http::error::bad_version && namesAVersion(head))
        refusal = refusals::version;
    else if (error) // also a Content-Length that is none or over the limit
        refusal = refusalFor(error);
    else
        refusal = checkFraming();
    if (!refusal)
        refusal = readFields();
    if (refusal)
        return refuse(*refusal);
    m_parser->eager(true);
    m_headComplete = true;
}

/// Refuses every framing that could be read in two ways (RFC 9112, sections 6.1 and 6.3).
std::optional<Refusal> RequestParser::checkFraming()
{
    const auto &message = m_parser->get();
    const auto lengths = message.count(http::field::content_length);
    const auto codings = message.count(http::field::transfer_encoding);
    if (lengths > 1 || codings > 1 || lengths + codings > 1)
        return refusals::badRequest;
    // Beast would take "5, 5" for 5, as RFC 9112 allows; other implementations on the way may not.
    const auto length = view(message[http::field::content_length]);
    if (!std::all_of(length.begin(), length.end(), isDigit))
        return refusals::badRequest;
    if (codings == 1) {
        if (message.version() == 10)
            return refusals::badRequest;
        if (!boost::beast::iequals(message[http::field::transfer_encoding], "chunked"))
            return refusals::coding;
    }
    return std::nullopt;
}

std::optional<Refusal> RequestParser::readFields()
{
    const auto &message = m_parser->get();
    const auto hosts = message.count(http::field::host);
    if (hosts > 1 || (hosts == 0 && message.version() == 11))
        return refusals::badRequest;
    if (message.count(http::field::authorization) > 1 || message.count(http::field::content_type) > 1)
        return refusals::badRequest;
    m_methodAsSent = std::string(view(message.method_string()));
    m_isHttp10 = message.version() == 10;
    m_isHead = message.method() == http::verb::head;
    m_request.method = m_isHead ? "GET" : m_methodAsSent;
    const bool asterisk = m_request.method == "OPTIONS" && message.target() == "*";
    auto target = asterisk ? RequestTarget{"*", {}} : parseTarget(view(message.target()));
    if (!target)
        return refusals::badTarget;
    m_path = target->path;
    m_request.path = std::move(target->path);
    m_request.query = std::move(target->query);
    // Copied now: fields in the trailer of a chunked body must not pass for these.
    m_request.authorization = std::string(view(message[http::field::authorization]));
    m_request.contentType = std::string(view(message[http::field::content_type]));
    const auto forwarded = message.equal_range("X-Forwarded-For");
    for (auto line = forwarded.first; line != forwarded.second; ++line)
        m_forwardedFor.append(m_forwardedFor.empty() ? "" : ",").append(view(line->value()));
    m_keepAlive = m_parser->keep_alive();
    if (message.count(http::field::expect) > 0 && message.version() == 11) {
        if (!boost::beast::iequals(message[http::field::expect], "100-continue"))
            return refusals::expectation;
        m_expectsContinue = true;
    }
    return std::nullopt;
}

std::size_t RequestParser::feedBody(std::string_view input)
{
    std::size_t used = 0;
    while (used < input.size() && !m_parser->is_done()) {
        boost::system::error_code error;
        const std::size_t step = m_parser->put(boost::asio::buffer(input.substr(used)), error);
        used += step;
        if (error && error != http::error::need_more) {
            refuse(refusalFor(error));
            break;
        }
        if (step == 0)
            break;
    }
    // What the parser leaves is an unfinished chunk header or trailer; it may not grow beyond a header's
    // size.
    if (!m_refusal && !m_parser->is_done() && input.size() - used > m_options.headerLimit)
        refuse(refusals::badRequest);
    return used;
}

Request RequestParser::takeRequest()
{
    m_request.body = std::move(m_parser->get().body());
    return std::move(m_request);
}

} // namespace clockwell::server
