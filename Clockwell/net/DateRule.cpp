#include "net/DateRule.h"

#include <array>
#include <cstdio>

namespace clockwell {

namespace {

/// Reads a text from left to right; after the first mismatch, every further read fails as well.
class Reader
{
public:
    explicit Reader(std::string_view text) : m_next(text.data()), m_end(text.data() + text.size()) {}

    bool ok() const { return m_ok; }
    bool atEnd() const { return m_next == m_end; }
    bool isNext(char expected) const { return m_next != m_end && *m_next == expected; }
    bool isNextDigit() const { return m_next != m_end && *m_next >= '0' && *m_next <= '9'; }

    void expect(char expected)
    {
        m_ok = m_ok && isNext(expected);
        m_next += m_ok;
    }

    int digit()
    {
        m_ok = m_ok && isNextDigit();
        return m_ok ? *m_next++ - '0' : 0;
    }

    int number(int digits, int min, int max)
    {
        if (m_end - m_next < digits) {
            m_ok = false;
            return 0;
        }
        unsigned value = 0;
        bool allDigits = true;
        for (int i = 0; i < digits; ++i) {
            const unsigned digit = static_cast<unsigned char>(*m_next++) - unsigned{'0'};
            allDigits = allDigits && digit <= 9;
            value = value * 10 + digit;
        }
        const int result = static_cast<int>(value);
        m_ok = m_ok && allDigits && result >= min && result <= max;
        return result;
    }

    /// One to nine digits after the decimal point, as milliseconds.
    int fraction()
    {
        int value = 0;
        int scale = 100;
        int count = 0;
        while (m_ok && (count == 0 || (count < 9 && isNextDigit()))) {
            value += digit() * scale;
            scale /= 10;
            ++count;
        }
        return value;
    }

private:
    const char *m_next;
    const char *m_end;
    bool m_ok = true;
};

std::chrono::minutes readOffset(Reader &reader)
{
    if (reader.isNext('Z')) {
        reader.expect('Z');
        return {};
    }
    const bool west = reader.isNext('-');
    reader.expect(west ? '-' : '+');
    const std::chrono::minutes offset = std::chrono::hours(reader.number(2, 0, 23));
    reader.expect(':');
    const std::chrono::minutes whole = offset + std::chrono::minutes(reader.number(2, 0, 59));
    return west ? -whole : whole;
}

} // namespace

std::optional<Instant> parseInstant(std::string_view text) noexcept
{
    using namespace std::chrono;
    Reader reader(text);
    const int y = reader.number(4, 0, 9999);
    reader.expect('-');
    const int m = reader.number(2, 1, 12);
    reader.expect('-');
    const int d = reader.number(2, 1, 31);
    reader.expect('T');
    const int hour = reader.number(2, 0, 23);
    reader.expect(':');
    const int minute = reader.number(2, 0, 59);
    reader.expect(':');
    // The platform's clocks cannot represent a leap second, so 60 is rejected like 61.
    const int second = reader.number(2, 0, 59);
    int milli = 0;
    if (reader.isNext('.')) {
        reader.expect('.');
        milli = reader.fraction();
    }
    const minutes offset = readOffset(reader);
    const year_month_day date{year(y), month(static_cast<unsigned>(m)), day(static_cast<unsigned>(d))};
    if (!reader.ok() || !reader.atEnd() || !date.ok())
        return std::nullopt;
    return sys_days(date) + hours(hour) + minutes(minute) + seconds(second) + milliseconds(milli) - offset;
}

std::optional<std::string> instantText(Instant moment)
{
    using namespace std::chrono;
    const sys_days midnight = floor<days>(moment);
    const year_month_day date(midnight);
    if (date.year() < year(0) || date.year() > year(9999))
        return std::nullopt;
    const hh_mm_ss time(moment - midnight);
    std::array<char, 32> text{};
    const int length = std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return std::string(text.data(), static_cast<std::size_t>(length));
}

} // namespace clockwell
