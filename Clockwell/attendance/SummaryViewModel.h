#pragma once

#include "attendance/DateFormats.h"
#include "attendance/SummaryTiles.h"
#include "attendance/TabViewModel.h"

namespace clockwell {

/// What the summary shows and when the current month is loaded: the first time that it comes to the front,
/// and whenever it is asked for. Main thread only.
class SummaryViewModel : public clockwell::TabViewModel // in full: Qt 6.4's type registrar takes it literally
{
    Q_OBJECT
    QML_ELEMENT
    /// Before the first answer there is nothing to say: the texts are empty.
    Q_PROPERTY(bool present READ isPresent NOTIFY summaryChanged)
    Q_PROPERTY(QString monthTitle READ monthTitle NOTIFY summaryChanged)
    Q_PROPERTY(clockwell::SummaryTiles *tiles READ tiles CONSTANT)
    Q_PROPERTY(QString totalWorked READ totalWorked NOTIFY summaryChanged)
    /// The card of the total as a screen reader says it.
    Q_PROPERTY(QString totalSpoken READ totalSpoken NOTIFY summaryChanged)

public:
    explicit SummaryViewModel(QObject *parent = nullptr);
    SummaryViewModel(DateFormats::Clock clock, DateFormats formats, QObject *parent = nullptr);

    bool isPresent() const { return summary() != nullptr; }
    QString monthTitle() const;
    SummaryTiles *tiles() { return &m_tiles; }
    QString totalWorked() const;
    QString totalSpoken() const;

Q_SIGNALS:
    void summaryChanged();

protected:
    void appeared() override;
    void attend() override;
    void renew() override;
    QCoro::Task<> request() override;

private:
    const MonthlySummary *summary() const;
    void takeSummary();

    DateFormats::Clock m_clock;
    DateFormats m_formats;
    SummaryTiles m_tiles;
};

} // namespace clockwell
