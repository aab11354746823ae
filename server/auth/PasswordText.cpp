#include "server/auth/PasswordText.h"

#include "server/auth/Passwords.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <stdexcept>

namespace clockwell::server {

namespace {

constexpr int fewestCharacters = 8;

icu::UnicodeString composed(std::string_view utf8)
{
    UErrorCode error = U_ZERO_ERROR;
    const auto *nfc = icu::Normalizer2::getNFCInstance(error);
    auto text = icu::UnicodeString::fromUTF8({utf8.data(), static_cast<std::int32_t>(utf8.size())});
    if (U_SUCCESS(error))
        text = nfc->normalize(text, error);
    if (U_FAILURE(error))
        throw std::runtime_error{"The Unicode library cannot be used on this machine."};
    return text;
}

template <class Property>
bool anyOf(const icu::UnicodeString &text, Property property)
{
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1))
        if (property(text.char32At(i)))
            return true;
    return false;
}

} // namespace

std::string preparedPassword(std::string_view utf8)
{
    if (std::ranges::all_of(utf8, [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return std::string{utf8};
    auto text = composed(utf8);
    for (std::int32_t i = 0; i < text.length(); ++i) // all separators are in the basic plane
        if (u_charType(text.charAt(i)) == U_SPACE_SEPARATOR)
            text.setCharAt(i, u' ');
    std::string prepared;
    return text.toUTF8String(prepared);
}

std::vector<std::string> passwordProblems(const std::string &utf8)
{
    if (utf8.size() > Passwords::longestPassword)
        return {"The password must not be longer than 1024 bytes."};
    const auto text = composed(utf8);
    std::vector<std::string> problems;
    if (text.countChar32() < fewestCharacters)
        problems.emplace_back("The password must have at least 8 characters.");
    if (!anyOf(text, [](UChar32 c) { return u_isUUppercase(c) != 0; }))
        problems.emplace_back("The password must contain an upper-case letter.");
    if (!anyOf(text, [](UChar32 c) { return u_isULowercase(c) != 0; }))
        problems.emplace_back("The password must contain a lower-case letter.");
    if (!anyOf(text, [](UChar32 c) { return u_isdigit(c) != 0; }))
        problems.emplace_back("The password must contain a number.");
    return problems;
}

} // namespace clockwell::server
