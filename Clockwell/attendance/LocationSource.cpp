#include "attendance/PositioningLocationSource.h"

#ifdef CLOCKWELL_SIMULATED_LOCATION
#include "attendance/NmeaLocationSource.h"
#include "attendance/SimulatedLocationSource.h"

#include <QFile>

#include <cstdio>
#endif

namespace clockwell {

#ifdef CLOCKWELL_SIMULATED_LOCATION
namespace {

/// The message does not include the value, which may contain coordinates.
void reportInvalidValue()
{
    std::fputs(
        "CLOCKWELL_SIMULATED_LOCATION: expected LAT,LNG,ACCURACY | denied | restricted | silent | failing | "
        "ask-grant:LAT,LNG,ACCURACY | ask-deny | nmea:FILE | nmea:socket:HOST:PORT; location will fail\n",
        stderr);
}

std::unique_ptr<LocationSource> makeSimulatedSource(const QByteArray &text)
{
    const QByteArray nmea = "nmea:";
    if (text.startsWith(nmea)) {
        auto source = std::make_unique<NmeaLocationSource>(QFile::decodeName(text.mid(nmea.size())));
        if (!source->isUsable())
            reportInvalidValue();
        return source;
    }
    const auto script = SimulatedLocationSource::parse(text);
    if (!script)
        reportInvalidValue();
    return std::make_unique<SimulatedLocationSource>(
        script.value_or(SimulatedLocationSource::Script{.fails = true}));
}

} // namespace
#endif

std::unique_ptr<LocationSource> makeLocationSource()
{
#ifdef CLOCKWELL_SIMULATED_LOCATION
    if (const QByteArray text = qgetenv("CLOCKWELL_SIMULATED_LOCATION"); !text.isEmpty())
        return makeSimulatedSource(text);
#endif
    return std::make_unique<PositioningLocationSource>();
}

} // namespace clockwell
