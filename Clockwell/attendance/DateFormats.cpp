#include "attendance/DateFormats.h"

#include <QHash>
#include <QLocale>

#include <unicode/gregocal.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <cmath>
#include <ctime>
#include <memory>

namespace clockwell {

namespace {

const QString dash = QStringLiteral("—");
// A calendar day is the same text in every time zone. It is parsed and formatted in UTC, because in zones
// where clocks go forward at midnight the first moment of that day does not exist.
const QByteArray dayZone = "UTC";

#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN) && !defined(Q_OS_ANDROID)
/// Converts a POSIX locale name, language[_REGION][.charset][@modifier]. Modifiers that do not name a script
/// are ignored.
icu::Locale fromPosix(const QByteArray &name)
{
    static const QHash<QByteArray, QByteArray> scripts = {
        {"latin", "_Latn"}, {"cyrillic", "_Cyrl"}, {"devanagari", "_Deva"}, {"iqtelif", "_Latn"}};
    const QByteArray place = name.split('@').first().split('.').first();
    if (place == "C" || place == "POSIX")
        return icu::Locale("en_US_POSIX");
    const QByteArray script = scripts.value(name.mid(name.indexOf('@') + 1));
    const QByteArray language = place.split('_').first();
    return icu::Locale::createCanonical((language + script + place.mid(language.size())).constData());
}

/// The locale in which the device formats dates: POSIX systems have a separate category for it, LC_TIME,
/// which may differ from the language of messages.
icu::Locale deviceLocale()
{
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"})
        if (const QByteArray name = qgetenv(variable); !name.isEmpty())
            return fromPosix(name);
    return fromPosix("C");
}
#else
icu::Locale deviceLocale()
{
    UErrorCode status = U_ZERO_ERROR;
    const QByteArray tag = QLocale::system().bcp47Name().toLatin1();
    const icu::Locale locale = icu::Locale::forLanguageTag(tag.constData(), status);
    return U_SUCCESS(status) ? locale : icu::Locale::getDefault();
}
#endif

std::unique_ptr<icu::TimeZone> namedZone(const QByteArray &name)
{
    return std::unique_ptr<icu::TimeZone>(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name.constData())));
}

/// A zone with the device's offset from UTC at one moment. The offset comes from the C library, which
/// supports every form of TZ; ICU interprets a POSIX rule like "CET-1CEST,M3.5.0,M10.5.0/3" as UTC.
std::unique_ptr<icu::TimeZone> deviceZone(UDate moment)
{
    const auto seconds = static_cast<std::time_t>(std::floor(moment / U_MILLIS_PER_SECOND));
    tzset(); // localtime_r() alone would not notice a changed setting
    std::tm local{};
    const bool known = localtime_r(&seconds, &local) != nullptr;
    const auto ahead = static_cast<int32_t>(known ? local.tm_gmtoff : 0);
    return std::make_unique<icu::SimpleTimeZone>(ahead * U_MILLIS_PER_SECOND, icu::UnicodeString());
}

std::unique_ptr<icu::TimeZone> zoneAt(UDate moment, const QByteArray &name)
{
    return name.isEmpty() ? deviceZone(moment) : namedZone(name);
}

icu::Locale localeOf(const QByteArray &name)
{
    return name.isEmpty() ? deviceLocale() : icu::Locale(name.constData());
}

icu::UnicodeString toIcu(const QString &text)
{
    return icu::UnicodeString(reinterpret_cast<const char16_t *>(text.utf16()),
                              static_cast<int32_t>(text.size()));
}

QString fromIcu(const icu::UnicodeString &text)
{
    return QString::fromUtf16(text.getBuffer(), text.length());
}

/// Null when ICU has no locale data at all.
std::unique_ptr<icu::SimpleDateFormat> formatter(const char16_t *pattern, const icu::Locale &locale,
                                                 std::unique_ptr<icu::TimeZone> zone)
{
    UErrorCode status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(pattern), locale, status);
    if (U_FAILURE(status))
        return nullptr;
    format->setLenient(false);
    format->adoptTimeZone(zone.release());
    return format;
}

QString write(const char16_t *pattern, UDate moment, const QByteArray &locale, const QByteArray &zone)
{
    const auto format = formatter(pattern, localeOf(locale), zoneAt(moment, zone));
    if (!format)
        return dash;
    icu::UnicodeString text;
    return fromIcu(format->format(moment, text));
}

/// The pattern has to match the whole text.
std::optional<UDate> readDate(const char16_t *pattern, const QString &text, const QByteArray &locale)
{
    const auto format = formatter(pattern, localeOf(locale), namedZone(dayZone));
    if (!format)
        return {};
    icu::ParsePosition position(0);
    const UDate moment = format->parse(toIcu(text), position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != text.size())
        return {};
    return moment;
}

UDate toIcu(DateFormats::Instant moment)
{
    return static_cast<UDate>(moment.time_since_epoch().count());
}

} // namespace

DateFormats::Instant DateFormats::systemNow()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

DateFormats::DateFormats(QByteArray locale, QByteArray timeZone)
    : m_locale(std::move(locale)), m_timeZone(std::move(timeZone))
{}

QString DateFormats::day(const QString &workDate) const
{
    const auto moment = readDate(u"yyyy-MM-dd", workDate, m_locale);
    return moment ? write(u"EEE, d MMM yyyy", *moment, m_locale, dayZone) : workDate;
}

QString DateFormats::month(const QString &month) const
{
    const auto moment = readDate(u"yyyy-MM", month, m_locale);
    return moment ? write(u"MMMM yyyy", *moment, m_locale, dayZone) : month;
}

QString DateFormats::monthKey(Instant now) const
{
    return write(u"yyyy-MM", toIcu(now), m_locale, m_timeZone);
}

QString DateFormats::longDate(Instant now) const
{
    return write(u"EEEE, d MMM yyyy", toIcu(now), m_locale, m_timeZone);
}

QString DateFormats::time(std::optional<Instant> moment) const
{
    return moment ? write(u"h:mm a", toIcu(*moment), m_locale, m_timeZone) : dash;
}

int DateFormats::hour(Instant now) const
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(zoneAt(toIcu(now), m_timeZone).release(), localeOf(m_locale), status));
    if (U_FAILURE(status))
        return 0;
    calendar->setTime(toIcu(now), status);
    return calendar->get(UCAL_HOUR_OF_DAY, status);
}

QString durationText(std::optional<qint64> minutes)
{
    return minutes && *minutes >= 1 ? hoursAndMinutes(*minutes) : dash;
}

QString hoursAndMinutes(qint64 minutes)
{
    const qint64 hours = minutes / 60;
    return QStringLiteral("%1h %2m").arg(QString::number(hours), QString::number(minutes - 60 * hours));
}

} // namespace clockwell
