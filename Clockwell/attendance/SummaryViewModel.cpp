#include "attendance/SummaryViewModel.h"

namespace clockwell {

SummaryViewModel::SummaryViewModel(QObject *parent)
    : SummaryViewModel(DateFormats::systemNow, DateFormats(), parent)
{}

SummaryViewModel::SummaryViewModel(DateFormats::Clock clock, DateFormats formats, QObject *parent)
    : TabViewModel(parent), m_clock(std::move(clock)), m_formats(std::move(formats))
{}

void SummaryViewModel::appeared()
{
    if (loadOnce())
        updateTexts();
}

void SummaryViewModel::observeStore()
{
    if (attendance())
        connect(attendance(), &AttendanceStore::summaryChanged, this, &SummaryViewModel::updateSummary);
    updateSummary();
}

void SummaryViewModel::updateTexts()
{
    Q_EMIT summaryChanged(); // the texts depend on the device's settings
}

QCoro::Task<> SummaryViewModel::request()
{
    return attendance()->loadSummary(m_formats.monthKey(m_clock()));
}

QString SummaryViewModel::monthTitle() const
{
    return summary() ? m_formats.month(summary()->month) : QString();
}

QString SummaryViewModel::totalWorked() const
{
    return summary() ? hoursAndMinutes(summary()->totalWorkingMinutes) : QString();
}

QString SummaryViewModel::totalSpoken() const
{
    return summary() ? QStringLiteral("Total worked, %1 this month").arg(totalWorked()) : QString();
}

const MonthlySummary *SummaryViewModel::summary() const
{
    return attendance() && attendance()->summary() ? &*attendance()->summary() : nullptr;
}

void SummaryViewModel::updateSummary()
{
    m_tiles.setSummary(summary() ? attendance()->summary() : std::nullopt);
    Q_EMIT summaryChanged();
}

} // namespace clockwell
