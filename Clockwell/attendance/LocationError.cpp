#include "attendance/LocationError.h"

namespace clockwell {

QString LocationError::text() const
{
    switch (kind) {
    case Kind::Denied:
        return QStringLiteral("Location permission is off. Enable it in Settings to mark attendance.");
    case Kind::Timeout:
        return QStringLiteral("Couldn't get a GPS fix. Move to open sky and try again.");
    case Kind::Unavailable:
        break;
    }
    return QStringLiteral("Location is unavailable right now.");
}

} // namespace clockwell
