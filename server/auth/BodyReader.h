#pragma once

#include "server/http/Message.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

/// Reads the fields of a JSON request body. Each getter notes what is wrong with its field and returns an
/// empty value then; finish() refuses the request with everything that was noted.
class BodyReader
{
public:
    /// Throws ApiError 415 for a body that says it is not JSON, and 400 for one that is not a JSON object.
    explicit BodyReader(const Request &request);

    /// A text of 1 to `longest` characters (code points) without control characters.
    std::string text(const char *key, std::size_t longest);
    /// Nothing when the field is absent, null or blank; without the blanks around it otherwise.
    std::optional<std::string> optionalText(const char *key, std::size_t longest);
    /// A text like that which is not blank, without the blanks around it.
    std::string name(const char *key, std::size_t longest);
    /// What somebody typed as the address of their account, in whatever form, without the blanks around it.
    std::string account(const char *key);
    /// A text in the form of an e-mail address, without the blanks around it.
    std::string emailAddress(const char *key);
    /// What somebody typed as the password that they have: at most as many bytes as a password may have.
    std::string password(const char *key);
    /// A text that may become an account's password.
    std::string newPassword(const char *key);
    /// What somebody typed as the code that was mailed to them, in whatever form.
    std::string code(const char *key);
    double number(const char *key, double smallest, double largest = std::numeric_limits<double>::max());
    bool boolean(const char *key);

    /// Notes what a getter cannot know.
    void addProblem(std::string problem) { m_problems.push_back(std::move(problem)); }

    /// Throws ApiError 400 with one message for each broken rule.
    void finish() const;

private:
    const nlohmann::json *find(const char *key);
    /// Null when there is no text of this key.
    const std::string *findText(const char *key);
    std::string checked(const char *key, std::string text, std::size_t longest);
    void complain(std::string_view key, std::string_view rule);

    nlohmann::json m_body;
    std::vector<std::string> m_problems;
};

} // namespace clockwell::server
