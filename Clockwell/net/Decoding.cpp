#include "net/Decoding.h"

#include "net/DateRule.h"
#include "net/Errors.h"

#include <QList>

#include <boost/mp11/algorithm.hpp>
#include <simdjson.h>

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace clockwell {

namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

// Our replies nest three levels deep; anything far deeper is an attack on the stack or a mistake.
constexpr std::size_t maxDepth = 64;

[[noreturn]] void fail(const char *what)
{
    throw DecodingError(QString::fromUtf8(what));
}

void read(element value, QString &out)
{
    std::string_view text;
    if (value.get_string().get(text) != simdjson::SUCCESS)
        fail("A text is missing in the reply.");
    out = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void read(element value, bool &out)
{
    if (value.get_bool().get(out) != simdjson::SUCCESS)
        fail("A yes or no is missing in the reply.");
}

void read(element value, double &out)
{
    if (value.get_double().get(out) != simdjson::SUCCESS)
        fail("A number is missing in the reply.");
}

void read(element value, qint64 &out)
{
    std::int64_t whole = 0;
    double real = 0;
    if (value.get_int64().get(whole) == simdjson::SUCCESS) {
        out = whole;
        return;
    }
    // 2^63 is exact as a double, and no double lies between it and the largest 64-bit integer.
    constexpr double beyond = 9223372036854775808.0;
    if (!value.is_double() || value.get_double().get(real) != simdjson::SUCCESS || real != std::trunc(real) ||
        real < -beyond || real >= beyond)
        fail("A whole number is missing in the reply.");
    out = static_cast<qint64>(real);
}

void read(element value, Instant &out)
{
    std::string_view text;
    if (value.get_string().get(text) != simdjson::SUCCESS)
        fail("A date is missing in the reply.");
    const std::optional<Instant> moment = parseInstant(text);
    if (!moment) {
        throw DecodingError(QStringLiteral("Bad date: ") +
                            QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    }
    out = *moment;
}

/// What strtod reads in the "C" locale. Not the plain function: the app sets the user's locale for its dates
/// and numbers, and it would then take a decimal comma.
std::optional<double> readDecimal(std::string_view text)
{
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    constexpr std::string_view blanks(" \t\n\v\f\r\0", 7);
    if (text.empty() || blanks.find(text.front()) != std::string_view::npos)
        return std::nullopt;
    // Faster and of the same mind about all it accepts; a plus sign, hexadecimal and overflow are left to
    // strtod.
    double value = 0;
    const auto quick = std::from_chars(text.data(), text.data() + text.size(), value);
    if (quick.ec == std::errc() && quick.ptr == text.data() + text.size())
        return value;
    const std::string terminated(text);
    char *end = nullptr;
    value = strtod_l(terminated.c_str(), &end, classic);
    if (end != terminated.c_str() + terminated.size())
        return std::nullopt;
    return value;
}

void read(element value, LenientDouble &out)
{
    std::string_view text;
    double number = 0;
    if (value.get_double().get(number) == simdjson::SUCCESS)
        out.value = number;
    else if (value.get_string().get(text) == simdjson::SUCCESS)
        out.value = readDecimal(text);
    else
        out.value.reset();
}

/// The texts of a list joined, or none when one of its elements is no text.
std::optional<QString> joined(simdjson::dom::array list)
{
    QStringList texts;
    for (const element item : list) {
        if (!item.is_string())
            return std::nullopt;
        read(item, texts.emplaceBack());
    }
    return texts.join(QStringLiteral(", "));
}

void read(element value, MessageField &out)
{
    simdjson::dom::array list;
    if (value.is_string())
        read(value, out.text);
    else if (value.get_array().get(list) == simdjson::SUCCESS)
        out.text = joined(list).value_or(QStringLiteral("Request failed"));
    else
        out.text = QStringLiteral("Request failed");
}

template <class T>
requires boost::describe::has_describe_members<T>::value void read(element value, T &out);
template <class T>
void read(element value, QList<T> &out);

template <class T>
void read(element value, std::optional<T> &out)
{
    if (value.is_null())
        out.reset();
    else
        read(value, out.emplace());
}

template <class T>
void read(element value, QList<T> &out)
{
    simdjson::dom::array list;
    if (value.get_array().get(list) != simdjson::SUCCESS)
        fail("A list is missing in the reply.");
    out.clear();
    out.reserve(static_cast<qsizetype>(list.size()));
    for (const element item : list)
        read(item, out.emplaceBack());
}

template <class T>
constexpr bool isOptional = false;
template <class T>
constexpr bool isOptional<std::optional<T>> = true;

/// Looks members up in the order of their declaration. Servers mostly send them in that order, so the field
/// after the last one found is tried first. Everything before it has been taken by other members: of equal
/// keys the first still counts.
class Fields
{
public:
    explicit Fields(simdjson::dom::object object)
        : m_object(object), m_next(object.begin()), m_end(object.end())
    {}

    bool find(std::string_view key, element &value)
    {
        if (m_next != m_end && m_next.key_equals(key)) {
            value = m_next.value();
            ++m_next;
            return true;
        }
        return m_object.at_key(key).get(value) == simdjson::SUCCESS;
    }

private:
    simdjson::dom::object m_object;
    simdjson::dom::object::iterator m_next;
    simdjson::dom::object::iterator m_end;
};

template <class Member>
void readMember(Fields &fields, std::string_view key, Member &out)
{
    element value;
    if (fields.find(key, value))
        read(value, out);
    else if constexpr (!isOptional<Member>)
        throw DecodingError(QStringLiteral("The reply has no \"%1\".").arg(QLatin1StringView(key.data())));
}

template <class T>
requires boost::describe::has_describe_members<T>::value void read(element value, T &out)
{
    simdjson::dom::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS)
        fail("A record is missing in the reply.");
    Fields fields(object);
    boost::mp11::mp_for_each<boost::describe::describe_members<T, boost::describe::mod_public>>(
        [&]<class Description>(Description) {
            static constexpr std::string_view key(Description::name);
            readMember(fields, key, out.*Description::pointer);
        });
}

} // namespace

template <class T>
T decode(std::string_view json)
{
    // A parser of its own for each text: its buffers hold tokens and must not outlive the reply.
    simdjson::dom::parser parser;
    element root;
    if (const simdjson::error_code error = parser.allocate(json.size(), maxDepth))
        fail(simdjson::error_message(error));
    if (const simdjson::error_code error = parser.parse(json.data(), json.size()).get(root))
        fail(simdjson::error_message(error));
    T result{};
    read(root, result);
    return result;
}

#define CLOCKWELL_DECODES(Record)                                                                            \
    template Record decode<Record>(std::string_view);                                                        \
    template std::optional<Record> decode<std::optional<Record>>(std::string_view);

CLOCKWELL_DECODES(TokenPair)
CLOCKWELL_DECODES(LoginResponse)
CLOCKWELL_DECODES(AuthUser)
CLOCKWELL_DECODES(SignupResponse)
CLOCKWELL_DECODES(MessageResponse)
CLOCKWELL_DECODES(TodayResponse)
CLOCKWELL_DECODES(OfficeBlock)
CLOCKWELL_DECODES(AttendanceRecord)
CLOCKWELL_DECODES(DistanceResponse)
CLOCKWELL_DECODES(PunchResponse)
CLOCKWELL_DECODES(MonthlySummary)
CLOCKWELL_DECODES(APIErrorBody)
CLOCKWELL_DECODES(QList<AttendanceRecord>)

#undef CLOCKWELL_DECODES

} // namespace clockwell
