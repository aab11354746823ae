#pragma once

#include "net/WireRecords.h"

#include <QByteArray>

#include <string_view>

namespace clockwell {

/// Decodes one JSON text as a record, an optional record (JSON null gives nullopt) or a list of records.
/// Throws DecodingError.
///
/// Keys are exactly the member names. A member is optional if its type is std::optional, otherwise required.
/// Unknown keys are ignored; of duplicate keys, the first counts. An integer member accepts any number whose
/// value is integral and fits a signed 64-bit integer, including 5.0 and 5e0. A number that fits neither 64
/// bits nor a double is an error only in a member that has to hold it; one too small for a double becomes
/// zero. The nesting depth is not limited. Defined for the types of WireRecords.h and their optionals, and
/// for QList<AttendanceRecord>; callable from any thread.
template <class T>
T decode(std::string_view json);

template <class T>
T decode(const QByteArray &json)
{
    return decode<T>(std::string_view(json.constData(), static_cast<std::size_t>(json.size())));
}

template <class T>
T decode(const char *json)
{
    return decode<T>(std::string_view(json));
}

} // namespace clockwell
