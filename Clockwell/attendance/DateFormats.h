#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace clockwell {

/// Dates and times for people, by fixed Unicode patterns in one locale, its calendar and its digits, and one
/// time zone.
///
/// Every call makes its own formatter, so that a change of the device's settings shows at once; loading the
/// locale data makes the first call expensive (milliseconds), so nothing here should run before the first
/// frame.
class DateFormats
{
public:
    using Instant = std::chrono::sys_time<std::chrono::milliseconds>;
    using Clock = std::function<Instant()>;

    /// The device's clock.
    static Instant systemNow();

    /// The device's locale and time zone, read anew on each call.
    DateFormats() = default;
    /// For example "de_DE" and "Europe/Berlin".
    DateFormats(QByteArray locale, QByteArray timeZone);

    /// "2025-03-03" as "Mon, 3 Mar 2025"; what cannot be read as such is returned as it is.
    QString day(const QString &workDate) const;
    /// "2025-03" as "March 2025"; what cannot be read as such is returned as it is.
    QString month(const QString &month) const;
    /// "2025-03".
    QString monthKey(Instant now) const;
    /// "Monday, 3 Mar 2025".
    QString longDate(Instant now) const;
    /// "9:04 AM"; "—" for no time.
    QString time(std::optional<Instant> moment) const;
    /// The hour of the day, 0 to 23.
    int hour(Instant now) const;

private:
    QByteArray m_locale;   // empty: the device's
    QByteArray m_timeZone; // empty: the device's
};

/// "8h 5m"; "—" for none and for anything below one minute.
QString durationText(std::optional<qint64> minutes);
/// "8h 5m" in any case, "0h 0m" included.
QString hoursAndMinutes(qint64 minutes);

} // namespace clockwell
