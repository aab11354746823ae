#pragma once

#include "net/WireRecords.h"

#include <QString>

namespace clockwell {

/// What the banner says about a recorded punch. The status stands as the server wrote it.
QString punchText(const PunchResponse &punch);

} // namespace clockwell
