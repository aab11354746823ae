#pragma once

#include "net/WireRecords.h"

#include <QString>

namespace clockwell {

/// The text of the banner for a recorded punch. Shows the status exactly as the server sends it.
QString punchText(const PunchResponse &punch);

} // namespace clockwell
