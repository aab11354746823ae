#include "attendance/HistoryViewModel.h"

namespace clockwell {

HistoryViewModel::HistoryViewModel(QObject *parent) : HistoryViewModel(DateFormats(), parent) {}

HistoryViewModel::HistoryViewModel(DateFormats formats, QObject *parent)
    : TabViewModel(parent), m_formats(formats), m_days(std::move(formats))
{}

void HistoryViewModel::appeared()
{
    if (loadOnce())
        updateTexts();
}

void HistoryViewModel::observeStore()
{
    if (attendance())
        connect(attendance(), &AttendanceStore::historyChanged, this, &HistoryViewModel::updateDays);
    updateDays();
}

void HistoryViewModel::updateTexts()
{
    m_days.updateTexts();
}

QCoro::Task<> HistoryViewModel::request()
{
    return attendance()->loadHistory();
}

QString HistoryViewModel::sampleDay() const
{
    return m_formats.day(QStringLiteral("2025-03-03"));
}

void HistoryViewModel::updateDays()
{
    const bool wasEmpty = isEmpty();
    m_days.setRecords(attendance() ? attendance()->history() : QList<AttendanceRecord>());
    if (isEmpty() != wasEmpty)
        Q_EMIT emptyChanged();
}

} // namespace clockwell
