#pragma once

#include "attendance/HistoryModel.h"
#include "attendance/TabViewModel.h"

namespace clockwell {

/// The state of the history screen. Loads the history when the screen is first shown and on each refresh.
/// Main thread only.
class HistoryViewModel
    : public clockwell::TabViewModel // qualified: Qt 6.4's type registrar needs the full name
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::HistoryModel *days READ days CONSTANT)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY emptyChanged)
    /// An arbitrary day in the device's locale, for the sample row.
    Q_PROPERTY(QString sampleDay READ sampleDay CONSTANT)

public:
    explicit HistoryViewModel(QObject *parent = nullptr);
    explicit HistoryViewModel(DateFormats formats, QObject *parent = nullptr);

    HistoryModel *days() { return &m_days; }
    QString sampleDay() const;
    bool isEmpty() const { return m_days.rowCount() == 0; }

Q_SIGNALS:
    void emptyChanged();

protected:
    void appeared() override;
    void observeStore() override;
    void updateTexts() override;
    QCoro::Task<> request() override;

private:
    void updateDays();

    DateFormats m_formats;
    HistoryModel m_days;
};

} // namespace clockwell
