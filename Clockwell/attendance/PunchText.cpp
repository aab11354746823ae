#include "attendance/PunchText.h"

#include "attendance/DateFormats.h"

namespace clockwell {

QString punchText(const PunchResponse &punch)
{
    if (punch.type != QLatin1String("IN"))
        return QStringLiteral("Checked out · worked ") + hoursAndMinutes(punch.workingMinutes.value_or(0));
    QString text = QStringLiteral("Checked in at ") + punch.office.value_or(QStringLiteral("office")) +
                   QStringLiteral(" · ") + punch.status.value_or(QString());
    if (punch.lateMinutes && *punch.lateMinutes > 0)
        text += QStringLiteral(" · ") + QString::number(*punch.lateMinutes) + QStringLiteral("m late");
    return text;
}

} // namespace clockwell
