#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace clockwell {

/// Formats dates and times with fixed Unicode patterns, in the calendar and digits of one locale and in one
/// time zone.
///
/// Every call creates its own formatter, so that changed device settings apply at once. The first call loads
/// the locale data, which takes milliseconds, so nothing here should be called before the first frame.
class DateFormats
{
public:
    using Instant = std::chrono::sys_time<std::chrono::milliseconds>;
    using Clock = std::function<Instant()>;

    /// The device's clock.
    static Instant systemNow();

    /// The device's locale and time zone, read at each call.
    DateFormats() = default;
    /// For example "de_DE" and "Europe/Berlin".
    DateFormats(QByteArray locale, QByteArray timeZone);

    /// Formats "2025-03-03" as "Mon, 3 Mar 2025"; returns text that is no such date unchanged.
    QString day(const QString &workDate) const;
    /// Formats "2025-03" as "March 2025"; returns text that is no such month unchanged.
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

/// "8h 5m"; "—" for no duration and for less than one minute.
QString durationText(std::optional<qint64> minutes);
/// "8h 5m"; "0h 0m" for zero.
QString hoursAndMinutes(qint64 minutes);

} // namespace clockwell
