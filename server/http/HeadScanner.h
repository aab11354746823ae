#pragma once

#include <cstddef>
#include <string_view>

namespace clockwell::server {

/// Looks at the raw bytes of a request's head before anything interprets them, and is stricter than a parser
/// needs to be: whatever two HTTP implementations could read differently (RFC 9112, sections 2.2, 5.1, 5.2
/// and 11.2) is malformed. That is a CR or LF alone, another control character, a folded or nameless line, a
/// space before a colon.
class HeadScanner
{
public:
    enum class Result { NeedMore, Complete, Malformed };

    /// `input` is the head from its first byte on: what the previous call got, and more.
    Result scan(std::string_view input);
    /// Bytes of the head with the empty line that ends it, once Complete.
    std::size_t length() const { return m_position; }

private:
    bool accepts(char c) const;
    bool endsHeadAt(std::string_view input) const;

    std::size_t m_position = 0;
    char m_last = 0;       // the byte before m_position
    bool m_atStart = true; // m_position is at the start of a line
};

} // namespace clockwell::server
