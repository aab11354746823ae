#pragma once

#include "net/Errors.h"
#include "net/WireRecords.h"

#include <QByteArray>
#include <QString>

#include <boost/describe.hpp>
#include <boost/mp11/algorithm.hpp>

#include <memory>
#include <optional>
#include <type_traits>

namespace clockwell {

/// The shortest decimal text, without an exponent, that parses back to the same number. Throws EncodingError
/// for a number that is not finite.
QString shortestDecimal(double value);

/// Builds a JSON object whose keys keep the order in which they were added. Hides the JSON library, because
/// otherwise every file that sends a request would compile its headers.
class JsonObject
{
public:
    JsonObject();
    JsonObject(JsonObject &&) noexcept;
    ~JsonObject();

    void add(const char *key, const QString &text); // throws EncodingError for invalid UTF-16
    void add(const char *key, double value);        // throws EncodingError for NaN and infinities
    void add(const char *key, bool value);
    void add(const char *key, qint64 value);
    /// As date-time text. Throws EncodingError for a year that does not have four digits.
    void add(const char *key, Instant moment);
    /// As a number; as null if it has no value, and as a string ("inf", "nan") if it is not finite.
    void add(const char *key, const LenientDouble &number);
    void add(const char *key, const MessageField &message);
    void add(const char *key, const JsonObject &nested);

    template <class T>
    requires boost::describe::has_describe_members<T>::value void add(const char *key, const T &record)
    {
        add(key, of(record));
    }
    /// An empty optional is omitted, never sent as null.
    template <class T>
    void add(const char *key, const std::optional<T> &value)
    {
        if (value)
            add(key, *value);
    }

    template <class T>
    static JsonObject of(const T &record)
    {
        JsonObject object;
        boost::mp11::mp_for_each<boost::describe::describe_members<T, boost::describe::mod_public>>(
            [&](auto member) { object.add(member.name, record.*member.pointer); });
        return object;
    }

    QByteArray text() const;

private:
    struct Value;
    std::unique_ptr<Value> m_value;
};

/// The JSON text of a described struct, its keys in the order of their declaration. Throws EncodingError.
template <class T>
QByteArray encodeBody(const T &record)
{
    return JsonObject::of(record).text();
}

} // namespace clockwell
