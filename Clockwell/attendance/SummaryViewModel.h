#pragma once

#include "attendance/DateFormats.h"
#include "attendance/SummaryTiles.h"
#include "attendance/TabViewModel.h"

namespace clockwell {

/// The state of the summary screen. Loads the current month when the screen is first shown and on each
/// refresh. Main thread only.
class SummaryViewModel
    : public clockwell::TabViewModel // qualified: Qt 6.4's type registrar needs the full name
{
    Q_OBJECT
    QML_ELEMENT
    /// Whether there is a summary; the texts are empty otherwise.
    Q_PROPERTY(bool present READ isPresent NOTIFY summaryChanged)
    Q_PROPERTY(QString monthTitle READ monthTitle NOTIFY summaryChanged)
    Q_PROPERTY(clockwell::SummaryTiles *tiles READ tiles CONSTANT)
    Q_PROPERTY(QString totalWorked READ totalWorked NOTIFY summaryChanged)
    /// The text of the total for screen readers.
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
    void observeStore() override;
    void updateTexts() override;
    QCoro::Task<> request() override;

private:
    const MonthlySummary *summary() const;
    void updateSummary();

    DateFormats::Clock m_clock;
    DateFormats m_formats;
    SummaryTiles m_tiles;
};

} // namespace clockwell
