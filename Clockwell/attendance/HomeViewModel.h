#pragma once

#include "attendance/DateFormats.h"
#include "attendance/LocationManager.h"
#include "attendance/TabViewModel.h"

#include <QColor>
#include <QPointer>

namespace clockwell {

/// The state of the home screen as formatted texts, symbols and colours, and the actions of its controls.
/// Contains no attendance rules: the server's responses decide which punch is offered. Loads the day and the
/// distance each time the screen is shown. Main thread only.
class HomeViewModel : public clockwell::TabViewModel // qualified: Qt 6.4's type registrar needs the full name
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(clockwell::LocationManager *location READ location WRITE setLocation NOTIFY locationChanged)
    Q_PROPERTY(QString fullName READ fullName WRITE setFullName NOTIFY headerChanged)

    Q_PROPERTY(QString greeting READ greeting NOTIFY headerChanged)
    Q_PROPERTY(QString dateLine READ dateLine NOTIFY headerChanged)

    Q_PROPERTY(QString officeName READ officeName NOTIFY todayChanged)
    Q_PROPERTY(QString hoursLine READ hoursLine NOTIFY todayChanged)
    Q_PROPERTY(QString recordStatus READ recordStatus NOTIFY todayChanged)
    Q_PROPERTY(bool hasRecord READ hasRecord NOTIFY todayChanged)
    Q_PROPERTY(QString checkInText READ checkInText NOTIFY todayChanged)
    Q_PROPERTY(QString checkOutText READ checkOutText NOTIFY todayChanged)
    Q_PROPERTY(QString workedText READ workedText NOTIFY todayChanged)
    Q_PROPERTY(bool dayComplete READ isDayComplete NOTIFY todayChanged)
    Q_PROPERTY(QString punchTitle READ punchTitle NOTIFY todayChanged)
    Q_PROPERTY(QColor punchColor READ punchColor NOTIFY todayChanged)

    Q_PROPERTY(bool located READ isLocated NOTIFY liveChanged)
    Q_PROPERTY(QString geofenceSymbol READ geofenceSymbol NOTIFY liveChanged)
    Q_PROPERTY(QColor geofenceColor READ geofenceColor NOTIFY liveChanged)
    Q_PROPERTY(QString distanceText READ distanceText NOTIFY liveChanged)
    Q_PROPERTY(QString insideText READ insideText NOTIFY liveChanged)
    Q_PROPERTY(QString nearestLine READ nearestLine NOTIFY liveChanged)
    Q_PROPERTY(QString locatingText READ locatingText NOTIFY busyChanged)
    Q_PROPERTY(QString hint READ hint NOTIFY hintChanged)

    Q_PROPERTY(bool loadingToday READ isLoadingToday NOTIFY busyChanged)
    Q_PROPERTY(bool checkingDistance READ isCheckingDistance NOTIFY busyChanged)
    Q_PROPERTY(bool punching READ isPunching NOTIFY busyChanged)

public:
    explicit HomeViewModel(QObject *parent = nullptr);
    HomeViewModel(DateFormats::Clock clock, DateFormats formats, QObject *parent = nullptr);

    LocationManager *location() const { return m_location; }
    void setLocation(LocationManager *location);
    QString fullName() const { return m_fullName; }
    void setFullName(const QString &fullName);

    QString greeting() const;
    QString dateLine() const;
    QString officeName() const;
    QString hoursLine() const;
    QString recordStatus() const;
    bool hasRecord() const { return record() != nullptr; }
    QString checkInText() const;
    QString checkOutText() const;
    QString workedText() const;
    bool isDayComplete() const;
    QString punchTitle() const;
    QColor punchColor() const;
    bool isLocated() const;
    QString geofenceSymbol() const;
    QColor geofenceColor() const;
    QString distanceText() const;
    QString insideText() const;
    QString nearestLine() const;
    QString locatingText() const;
    QString hint() const;
    bool isLoadingToday() const { return attendance() && attendance()->loadingToday(); }
    bool isCheckingDistance() const { return attendance() && attendance()->checkingDistance(); }
    bool isPunching() const { return attendance() && attendance()->punching(); }

public Q_SLOTS:
    void refreshLocation();
    void punch();

Q_SIGNALS:
    void locationChanged();
    void headerChanged();
    void todayChanged();
    void liveChanged();
    void hintChanged();
    void busyChanged();

protected:
    void appeared() override;
    void observeStore() override;
    void updateTexts() override;
    QCoro::Task<> request() override;

private:
    const TodayResponse *today() const;
    const AttendanceRecord *record() const;
    const DistanceResponse *live() const;
    QCoro::Task<> loadAll();

    DateFormats::Clock m_clock;
    DateFormats m_formats;
    QPointer<LocationManager> m_location;
    QString m_fullName;
};

} // namespace clockwell
