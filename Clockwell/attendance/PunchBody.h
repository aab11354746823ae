#pragma once

#include <QString>

#include <boost/describe.hpp>

namespace clockwell {

struct Fix;

/// The request body of a punch. It does not contain the kind of punch, because the server decides which is
/// due.
struct PunchBody
{
    double lat = 0;      // degrees
    double lng = 0;      // degrees
    double accuracy = 0; // metres; 0: unknown
    QString deviceId;
    bool isMockLocation = false; // part of the server's contract; the app detects nothing
};
BOOST_DESCRIBE_STRUCT(PunchBody, (), (lat, lng, accuracy, deviceId, isMockLocation))

/// An invalid accuracy becomes 0.
PunchBody punchBody(const Fix &fix, QString deviceId);

} // namespace clockwell
