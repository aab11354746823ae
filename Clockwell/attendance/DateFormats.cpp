#include "attendance/DateFormats.h"

#include <QLocale>
#include <QStringList>

#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <memory>

namespace clockwell {

namespace {

const QString dash = QStringLiteral("—");

/// How the device writes dates. POSIX systems say so in the environment, in a category of its own that may
/// differ from the language of the texts.
icu::Locale deviceLocale()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN) && !defined(Q_OS_ANDROID)
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const QByteArray value = qgetenv(variable);
        if (value.isEmpty())
            continue;
        const QByteArray name = value.left(value.indexOf('.'));
        return name == "C" || name == "POSIX" ? icu::Locale("en_US_POSIX")
                                              : icu::Locale::createCanonical(value.constData());
    }
    return icu::Locale("en_US_POSIX");
#else
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale locale =
        icu::Locale::forLanguageTag(QLocale::system().bcp47Name().toLatin1().constData(), status);
    return U_SUCCESS(status) ? locale : icu::Locale::getDefault();
#endif
}

std::unique_ptr<icu::TimeZone> zoneOf(const QByteArray &name)
{
    // detectHostTimeZone() looks afresh, the default zone is the one of the start.
    return std::unique_ptr<icu::TimeZone>(
        name.isEmpty() ? icu::TimeZone::detectHostTimeZone()
                       : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name.constData())));
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

/// Null when ICU has no data at all.
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
    const auto format = formatter(pattern, localeOf(locale), zoneOf(zone));
    if (!format)
        return dash;
    icu::UnicodeString text;
    return fromIcu(format->format(moment, text));
}

/// The whole text has to match.
std::optional<UDate> read(const char16_t *pattern, const QString &text, const QByteArray &locale,
                          const QByteArray &zone)
{
    const auto format = formatter(pattern, localeOf(locale), zoneOf(zone));
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

DateFormats::DateFormats(QByteArray locale, QByteArray timeZone)
    : m_locale(std::move(locale)), m_timeZone(std::move(timeZone))
{}

QString DateFormats::day(const QString &workDate) const
{
    const auto moment = read(u"yyyy-MM-dd", workDate, m_locale, m_timeZone);
    return moment ? write(u"EEE, d MMM yyyy", *moment, m_locale, m_timeZone) : workDate;
}

QString DateFormats::month(const QString &month) const
{
    const auto moment = read(u"yyyy-MM", month, m_locale, m_timeZone);
    return moment ? write(u"MMMM yyyy", *moment, m_locale, m_timeZone) : month;
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
        icu::Calendar::createInstance(zoneOf(m_timeZone).release(), localeOf(m_locale), status));
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
