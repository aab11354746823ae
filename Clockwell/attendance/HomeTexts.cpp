#include "attendance/HomeTexts.h"

#include <QStringList>

#include <cmath>

namespace clockwell::home_texts {

namespace {

const QString dash = QStringLiteral("—");

QString partOfDay(int hour)
{
    if (hour < 12)
        return QStringLiteral("Good morning");
    return hour < 17 ? QStringLiteral("Good afternoon") : QStringLiteral("Good evening");
}

} // namespace

QString greeting(int hour, const QString &fullName)
{
    const QStringList names = fullName.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return names.isEmpty() ? partOfDay(hour) : partOfDay(hour) + QStringLiteral(", ") + names.first();
}

QString officeName(const TodayResponse *today)
{
    return today ? today->office.name : dash;
}

QString hoursLine(const TodayResponse *today)
{
    if (!today)
        return {};
    const OfficeBlock &office = today->office;
    return QStringLiteral("Hours ") + office.checkInTime + QStringLiteral("–") + office.checkOutTime +
           QStringLiteral(" · within ") + QString::number(office.radiusMeters) + QStringLiteral("m");
}

QString distance(double metres)
{
    // Adding zero turns negative zero into positive zero.
    return QString::number(std::trunc(metres) + 0.0, 'f', 0) + QStringLiteral("m");
}

QString nearestLine(const DistanceResponse &live)
{
    return QStringLiteral("Nearest: ") + live.office.value_or(dash) + QStringLiteral(" · radius ") +
           QString::number(live.radiusMeters) + QStringLiteral("m");
}

PunchOffer punchOffer(const TodayResponse *today)
{
    if (!today)
        return PunchOffer::CheckIn;
    if (today->canCheckOut)
        return PunchOffer::CheckOut;
    return today->canCheckIn ? PunchOffer::CheckIn : PunchOffer::Complete;
}

} // namespace clockwell::home_texts
