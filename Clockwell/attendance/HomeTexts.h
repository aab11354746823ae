#pragma once

#include "net/WireRecords.h"

#include <QString>

namespace clockwell {

/// The texts that the home screen composes.
namespace home {

/// `hour` is 0 to 23. The first name is the first piece between spaces of the full name; without one the
/// greeting stands alone.
QString greeting(int hour, const QString &fullName);
QString officeName(const TodayResponse *today);
/// Empty before the first answer. The two times stand as the server wrote them.
QString hoursLine(const TodayResponse *today);
/// Whole metres, cut off, not rounded.
QString distance(double metres);
QString nearestLine(const DistanceResponse &live);

/// What the screen offers at its foot.
enum class Punch {
    CheckIn,
    CheckOut,
    Complete, // nothing left to do
};
/// `today` is null before the first answer: a check-in is offered then. Where the server allows both, the
/// check-out is.
Punch punch(const TodayResponse *today);

} // namespace home

} // namespace clockwell
