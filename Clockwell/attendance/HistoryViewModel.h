#pragma once

#include "attendance/HistoryModel.h"
#include "attendance/TabViewModel.h"

namespace clockwell {

/// What the history shows and when it is loaded: the first time that it comes to the front, and whenever it
/// is asked for. Main thread only.
class HistoryViewModel : public clockwell::TabViewModel // in full: Qt 6.4's type registrar takes it literally
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::HistoryModel *days READ days CONSTANT)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY emptyChanged)
    /// A day in the device's locale, whichever: what stands for those to come.
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
    void attend() override;
    void renew() override;
    QCoro::Task<> request() override;

private:
    void takeHistory();

    DateFormats m_formats;
    HistoryModel m_days;
};

} // namespace clockwell
