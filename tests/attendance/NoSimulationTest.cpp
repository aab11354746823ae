#include "attendance/PositioningLocationSource.h"

#include <QFile>

#include <gtest/gtest.h>

namespace clockwell {
namespace {

QByteArray contentOf(const char *path)
{
    QFile file(QString::fromLocal8Bit(path));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    return file.readAll();
}

TEST(NoSimulation, VariableIsIgnored)
{
    qputenv("CLOCKWELL_SIMULATED_LOCATION", "12.9,77.5,8");
    const auto source = makeLocationSource();
    EXPECT_STREQ(source->metaObject()->className(), "clockwell::PositioningLocationSource");
}

TEST(NoSimulation, LibraryContainsNoSimulation)
{
    const QByteArray plain = contentOf(PLAIN_LIBRARY);
    const QByteArray simulated = contentOf(SIMULATED_LIBRARY);
    for (const char *trace :
         {"CLOCKWELL_SIMULATED_LOCATION", "SimulatedLocationSource", "NmeaLocationSource", "ask-grant"}) {
        EXPECT_TRUE(simulated.contains(trace)) << trace; // otherwise its absence below would prove nothing
        EXPECT_FALSE(plain.contains(trace)) << trace;
    }
}

} // namespace
} // namespace clockwell
