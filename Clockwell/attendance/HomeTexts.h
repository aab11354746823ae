#pragma once

#include "net/WireRecords.h"

#include <QString>

namespace clockwell {

/// The texts of the home screen.
namespace home_texts {

/// `hour` is 0 to 23. The greeting is followed by the first word of the full name, if there is one. Only
/// spaces separate words.
QString greeting(int hour, const QString &fullName);
QString officeName(const TodayResponse *today);
/// Empty before the first response. Shows the two times exactly as the server sends them.
QString hoursLine(const TodayResponse *today);
/// Whole metres, truncated, not rounded.
QString distance(double metres);
QString nearestLine(const DistanceResponse &live);

/// The action offered at the bottom of the screen.
enum class PunchOffer {
    CheckIn,
    CheckOut,
    Complete, // nothing left to do
};
/// `today` is null before the first response; a check-in is offered then. When the server allows both, the
/// check-out is offered.
PunchOffer punchOffer(const TodayResponse *today);

} // namespace home_texts

} // namespace clockwell
