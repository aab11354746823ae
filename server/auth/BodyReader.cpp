#include "server/auth/BodyReader.h"

#include "server/auth/Accounts.h"
#include "server/auth/EmailAddress.h"
#include "server/auth/PasswordText.h"
#include "server/auth/Passwords.h"
#include "server/http/ApiError.h"
#include "server/http/NumberText.h"
#include "server/http/Utf8.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace clockwell::server {

namespace {

constexpr std::size_t longestCode = 64; // characters

/// The media type without its parameters, in lower case.
std::string mediaType(std::string_view contentType)
{
    return lowerAscii(contentType.substr(0, contentType.find_first_of("; \t")));
}

/// What people type has a name for people; the rest has the one that a programmer looks for.
std::string labelOf(std::string_view key)
{
    static constexpr std::pair<std::string_view, std::string_view> labels[] = {
        {"fullName", "The full name"},       {"email", "The e-mail address"},
        {"phone", "The phone number"},       {"instituteCode", "The company code"},
        {"password", "The password"},        {"currentPassword", "The current password"},
        {"newPassword", "The new password"}, {"code", "The code"},
    };
    const auto *label = std::ranges::find(labels, key, &std::pair<std::string_view, std::string_view>::first);
    return std::string{label == std::end(labels) ? key : label->second};
}

} // namespace

BodyReader::BodyReader(const Request &request)
{
    const std::string type = mediaType(request.contentType);
    if (!type.empty() && type != "application/json")
        throw ApiError{415, "UNSUPPORTED_MEDIA_TYPE", "The request body must be JSON (application/json)."};
    m_body = nlohmann::json::parse(request.body, nullptr, false);
    if (m_body.is_discarded())
        throw ApiError{400, "BAD_JSON", "The request body is not valid JSON."};
    if (!m_body.is_object())
        throw ApiError{400, "BAD_JSON", "The request body must be a JSON object."};
}

void BodyReader::complain(std::string_view key, std::string_view rule)
{
    m_problems.push_back(labelOf(key) + ' ' + std::string{rule});
}

const nlohmann::json *BodyReader::find(const char *key)
{
    const auto field = m_body.find(key);
    if (field != m_body.end() && !field->is_null())
        return &*field;
    complain(key, "is missing.");
    return nullptr;
}

const std::string *BodyReader::findText(const char *key)
{
    const auto *field = find(key);
    if (field == nullptr)
        return nullptr;
    const auto *value = field->get_ptr<const std::string *>();
    if (value == nullptr)
        complain(key, "must be a text.");
    return value;
}

std::string BodyReader::checked(const char *key, std::string text, std::size_t longest)
{
    if (text.empty())
        complain(key, "must not be empty.");
    else if (characterCount(text) > longest)
        complain(key, "must not be longer than " + std::to_string(longest) + " characters.");
    else if (std::ranges::any_of(text, isControl))
        complain(key, "must not contain control characters.");
    else
        return text;
    return {};
}

std::string BodyReader::text(const char *key, std::size_t longest)
{
    const std::string *value = findText(key);
    return value == nullptr ? std::string{} : checked(key, *value, longest);
}

std::string BodyReader::name(const char *key, std::size_t longest)
{
    const std::string *value = findText(key);
    return value == nullptr ? std::string{} : checked(key, trimmed(*value), longest);
}

std::optional<std::string> BodyReader::optionalText(const char *key, std::size_t longest)
{
    const auto field = m_body.find(key);
    if (field == m_body.end() || field->is_null())
        return {};
    const auto *value = field->get_ptr<const std::string *>();
    if (value != nullptr && trimmed(*value).empty())
        return {};
    return name(key, longest);
}

std::string BodyReader::account(const char *key)
{
    return name(key, longestEmail);
}

std::string BodyReader::code(const char *key)
{
    return text(key, longestCode);
}

std::string BodyReader::emailAddress(const char *key)
{
    const auto before = m_problems.size();
    std::string address = account(key);
    if (m_problems.size() == before && !isEmailAddress(address))
        m_problems.emplace_back("Please enter an e-mail address like name@example.org.");
    return address;
}

std::string BodyReader::password(const char *key)
{
    std::string password = text(key, std::numeric_limits<std::size_t>::max());
    if (password.size() <= Passwords::longestPassword)
        return password;
    complain(key, "must not be longer than " + std::to_string(Passwords::longestPassword) + " bytes.");
    return {};
}

std::string BodyReader::newPassword(const char *key)
{
    const auto before = m_problems.size();
    std::string password = text(key, std::numeric_limits<std::size_t>::max());
    if (m_problems.size() != before)
        return {};
    auto problems = passwordProblems(password);
    m_problems.insert(m_problems.end(), std::make_move_iterator(problems.begin()),
                      std::make_move_iterator(problems.end()));
    return password;
}

double BodyReader::number(const char *key, double smallest, double largest)
{
    const auto *field = find(key);
    if (field == nullptr)
        return 0;
    const double value = field->is_number() ? field->get<double>() : std::numeric_limits<double>::quiet_NaN();
    if (value >= smallest && value <= largest)
        return value;
    m_problems.push_back(numberRule(key, smallest, largest));
    return 0;
}

bool BodyReader::boolean(const char *key)
{
    const auto *field = find(key);
    if (field == nullptr)
        return false;
    if (!field->is_boolean())
        complain(key, "must be true or false.");
    return field->is_boolean() && field->get<bool>();
}

void BodyReader::finish() const
{
    if (!m_problems.empty())
        throw ApiError{400, "VALIDATION_FAILED", m_problems};
}

} // namespace clockwell::server
