#pragma once

#include "server/storage/DatabaseError.h"

#include <soci/soci.h>

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace clockwell::server {

/// The types that travel to and from the database: text, 64-bit integers and doubles; booleans are 0 and 1.
template <class T>
struct SqlType;
template <class T>
    requires std::integral<T>
struct SqlType<T>
{
    using Type = long long;
};
template <>
struct SqlType<double>
{
    using Type = double;
};
template <class T>
    requires std::convertible_to<T, std::string_view>
struct SqlType<T>
{
    using Type = std::string;
};

/// Throws DatabaseError of kind Constraint for a text with a NUL.
template <class Value>
void requireTextWithoutNul(const Value &value)
{
    if constexpr (std::is_same_v<Value, std::string>)
        if (value.find('\0') != std::string::npos)
            throw DatabaseError{DatabaseError::Kind::Constraint, "a text holds a NUL character"};
}

/// One bound parameter; it must outlive the execution of its statement.
template <class T>
class SqlParameter
{
public:
    using Type = typename SqlType<std::decay_t<T>>::Type;

    explicit SqlParameter(const T &value) : m_value(static_cast<Type>(value)) {}
    void bind(soci::statement &statement) { statement.exchange(soci::use(m_value)); }
    void requireNoNul() const { requireTextWithoutNul(m_value); }

private:
    Type m_value;
};

template <class T>
class SqlParameter<std::optional<T>>
{
public:
    using Type = typename SqlType<T>::Type;

    explicit SqlParameter(const std::optional<T> &value)
        : m_value(value ? static_cast<Type>(*value) : Type{}), m_state(value ? soci::i_ok : soci::i_null)
    {}
    void bind(soci::statement &statement) { statement.exchange(soci::use(m_value, m_state)); }
    void requireNoNul() const { requireTextWithoutNul(m_value); }

private:
    Type m_value;
    soci::indicator m_state;
};

/// One column of a row being read, on its way into a member of a row struct.
template <class T>
class SqlColumn
{
public:
    explicit SqlColumn(T &member) : m_member(&member) {}
    void bind(soci::statement &statement) { statement.exchange(soci::into(m_value, m_state)); }
    void store() { *m_member = m_state == soci::i_ok ? m_value : T{}; }

private:
    T *m_member;
    T m_value{};
    soci::indicator m_state = soci::i_null;
};

template <class T>
class SqlColumn<std::optional<T>>
{
public:
    explicit SqlColumn(std::optional<T> &member) : m_member(&member) {}
    void bind(soci::statement &statement) { statement.exchange(soci::into(m_value, m_state)); }
    void store() { *m_member = m_state == soci::i_ok ? std::optional<T>{m_value} : std::nullopt; }

private:
    std::optional<T> *m_member;
    T m_value{};
    soci::indicator m_state = soci::i_null;
};

template <class T>
struct SingleColumn
{
    T value{};
    auto columns() { return std::tie(value); }
};

template <class Row>
auto sqlColumns(Row &row)
{
    return std::apply([]<class... T>(T &...member) { return std::make_tuple(SqlColumn<T>{member}...); },
                      row.columns());
}

template <class... Column>
void storeColumns(std::tuple<Column...> &columns)
{
    std::apply([](auto &...column) { (column.store(), ...); }, columns);
}

} // namespace clockwell::server
