#include "net/Encoding.h"

#include "net/DateRule.h"

#include <nlohmann/json.hpp>

#include <array>
#include <charconv>
#include <cmath>

namespace clockwell {

namespace {

void requireFinite(double value)
{
    if (!std::isfinite(value))
        throw EncodingError(QStringLiteral("A number to send is not finite."));
}

} // namespace

QString shortestDecimal(double value)
{
    requireFinite(value);
    // The smallest denormal has the longest text: a sign, "0." and at most 1074 digits.
    std::array<char, 1100> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    return QString::fromLatin1(buffer.data(), end.ptr - buffer.data());
}

struct JsonObject::Value
{
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
};

JsonObject::JsonObject() : m_value(std::make_unique<Value>()) {}
JsonObject::JsonObject(JsonObject &&) noexcept = default;
JsonObject::~JsonObject() = default;

void JsonObject::add(const char *key, const QString &text)
{
    if (!text.isValidUtf16())
        throw EncodingError(QStringLiteral("A text to send is not valid Unicode."));
    m_value->json[key] = text.toStdString();
}

void JsonObject::add(const char *key, double value)
{
    requireFinite(value);
    m_value->json[key] = value;
}

void JsonObject::add(const char *key, bool value)
{
    m_value->json[key] = value;
}

void JsonObject::add(const char *key, qint64 value)
{
    m_value->json[key] = value;
}

void JsonObject::add(const char *key, Instant moment)
{
    std::optional<std::string> text = instantText(moment);
    if (!text)
        throw EncodingError(QStringLiteral("A date to send has no year of four digits."));
    m_value->json[key] = std::move(*text);
}

void JsonObject::add(const char *key, const LenientDouble &number)
{
    if (!number.value)
        m_value->json[key] = nullptr;
    else if (std::isfinite(*number.value))
        m_value->json[key] = *number.value;
    else
        m_value->json[key] = QString::number(*number.value).toStdString();
}

void JsonObject::add(const char *key, const MessageField &message)
{
    add(key, message.text);
}

void JsonObject::add(const char *key, const JsonObject &nested)
{
    m_value->json[key] = nested.m_value->json;
}

QByteArray JsonObject::text() const
{
    const std::string text = m_value->json.dump();
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace clockwell
