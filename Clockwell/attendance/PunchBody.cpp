#include "attendance/PunchBody.h"

#include "attendance/LocationSource.h"

#include <utility>

namespace clockwell {

PunchBody punchBody(const Fix &fix, QString deviceId)
{
    return PunchBody{.lat = fix.latitude,
                     .lng = fix.longitude,
                     .accuracy = fix.horizontalAccuracy > 0 ? fix.horizontalAccuracy : 0,
                     .deviceId = std::move(deviceId)};
}

} // namespace clockwell
