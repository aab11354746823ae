#include "net/Decoding.h"

#include "net/DateRule.h"
#include "net/Errors.h"
#include "net/FittingNumbers.h"
#include "net/ReadDecimal.h"

#include <QList>

#include <boost/mp11/algorithm.hpp>
#include <simdjson.h>

#include <cmath>

namespace clockwell {

namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

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
    // 2^63 is exact as a double. -2^63 fits, but integers slightly below it round to the same double, so it
    // is rejected here.
    constexpr double limit = 9223372036854775808.0;
    if (!value.is_double() || value.get_double().get(real) != simdjson::SUCCESS || real != std::trunc(real) ||
        real <= -limit || real >= limit)
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

/// The strings of a list, joined; nullopt if one of its elements is not a string.
std::optional<QString> joinedStrings(simdjson::dom::array list)
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
        out.text = joinedStrings(list).value_or(QStringLiteral("Request failed"));
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
/// after the last one found is tried first. All fields before it belong to other members, so the first of
/// duplicate keys still counts.
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

// Deeper than any of our records. The parser allocates memory for each level of the maximum depth.
constexpr std::size_t defaultDepth = 64;

/// The deepest nesting that a text of this length can have, plus one level for the document. Neither this
/// file nor the parser recurses per level, so depth costs no stack.
std::size_t depthLimit(std::string_view json)
{
    return json.size() / 2 + 2;
}

simdjson::error_code parse(simdjson::dom::parser &parser, std::string_view json, std::size_t depth,
                           element &root)
{
    if (const simdjson::error_code error = parser.allocate(json.size(), depth))
        return error;
    return parser.parse(json.data(), json.size()).get(root);
}

/// The parser rejects a whole text if one value, under any key, nests deeper than the given depth or is a
/// number beyond the range of 64 bits and of a double. Such texts are rare; they are parsed again with a
/// larger depth or with their numbers rewritten.
simdjson::error_code parseWithFallback(simdjson::dom::parser &parser, std::string_view json, element &root)
{
    simdjson::error_code error = parse(parser, json, defaultDepth, root);
    if (error == simdjson::DEPTH_ERROR)
        error = parse(parser, json, depthLimit(json), root);
    if (error == simdjson::NUMBER_ERROR) {
        const std::string fitting = fittingNumbers(json);
        error = parse(parser, fitting, depthLimit(fitting), root);
    }
    return error;
}

} // namespace

template <class T>
T decode(std::string_view json)
{
    // A new parser for each text: its buffers contain session tokens and must not outlive the reply.
    simdjson::dom::parser parser;
    element root;
    if (const simdjson::error_code error = parseWithFallback(parser, json, root))
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
