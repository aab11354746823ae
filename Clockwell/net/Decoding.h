#pragma once

#include "net/WireRecords.h"

#include <QByteArray>

#include <string_view>

namespace clockwell {

/// Reads one JSON text into a record, an optional record (JSON null gives none) or a list of records. Throws
/// DecodingError.
///
/// Keys are the member names exactly; a member is optional when its type is std::optional, else required;
/// unknown keys are ignored; of a key given twice the first counts. An integer member takes any number whose
/// value is integral and fits 64 bits signed, so also 5.0 and 5e0. A number that fits neither 64 bits nor a
/// double fails only a member that has to hold it; one too small for a double is zero. Texts nest as deep as
/// they like. Defined for the types of WireRecords.h and their optionals, and for QList<AttendanceRecord>;
/// callable from any thread.
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
