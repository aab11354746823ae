#pragma once

#include "server/http/Message.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace clockwell::server {

/// Reads the fields of a JSON request body. Each getter notes what is wrong with its field and returns an
/// empty value then; finish() refuses the request with everything that was noted.
class BodyReader
{
public:
    /// Throws ApiError 415 for a body that says it is not JSON, and 400 for one that is not a JSON object.
    explicit BodyReader(const Request &request);

    /// A text of 1 to `longest` bytes without control characters.
    std::string text(const char *key, std::size_t longest);
    double number(const char *key, double smallest, double largest = std::numeric_limits<double>::max());
    bool boolean(const char *key);

    /// Throws ApiError 400 with one message for each broken rule.
    void finish() const;

private:
    const nlohmann::json *find(const char *key);

    nlohmann::json m_body;
    std::vector<std::string> m_problems;
};

} // namespace clockwell::server
