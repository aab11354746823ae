#pragma once

#include <QString>

#include <boost/describe.hpp>

namespace clockwell {

struct Fix;

/// What a punch tells the server. Which punch is due is the server's decision, so it does not say.
struct PunchBody
{
    double lat = 0;      // degrees
    double lng = 0;      // degrees
    double accuracy = 0; // metres; 0: unknown
    QString deviceId;
    bool isMockLocation = false; // part of the server's contract; the app detects nothing
};
BOOST_DESCRIBE_STRUCT(PunchBody, (), (lat, lng, accuracy, deviceId, isMockLocation))

PunchBody punchBody(const Fix &fix, QString deviceId);

} // namespace clockwell
