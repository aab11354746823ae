#include "SvgPath.h"

#include <QTransform>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <optional>

namespace clockwell {

namespace {

class PathReader
{
public:
    explicit PathReader(QByteArrayView data) : m_next(data.begin()), m_end(data.end()) {}

    QPainterPath read()
    {
        while (readSegment()) {
        }
        return m_path;
    }

private:
    void skipSeparators()
    {
        m_next = std::find_if(
            m_next, m_end, [](char c) { return c != ' ' && c != ',' && c != '\n' && c != '\t'; });
    }

    std::optional<qreal> number()
    {
        skipSeparators();
        if (m_next != m_end && *m_next == '+') // std::from_chars knows no plus sign
            ++m_next;
        qreal value = 0;
        const auto [after, error] = std::from_chars(m_next, m_end, value);
        if (error != std::errc())
            return std::nullopt;
        m_next = after;
        return value;
    }

    // A flag is one digit that the next number may follow without a separator.
    std::optional<bool> flag()
    {
        skipSeparators();
        if (m_next == m_end || (*m_next != '0' && *m_next != '1'))
            return std::nullopt;
        return *m_next++ == '1';
    }

    QPointF origin() const { return m_relative ? m_current : QPointF(); }

    std::optional<QPointF> point()
    {
        const auto x = number();
        const auto y = x ? number() : std::nullopt;
        return y ? std::optional(origin() + QPointF(*x, *y)) : std::nullopt;
    }

    bool readSegment()
    {
        skipSeparators();
        if (m_next == m_end)
            return false;
        const char c = *m_next;
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (letter) {
            m_relative = c >= 'a';
            m_command = m_relative ? static_cast<char>(c - 'a' + 'A') : c;
            ++m_next;
        }
        const char previous = m_previous;
        const bool read = segment(previous);
        m_previous = m_command;
        // Numbers after a move without a new letter are lines; after a close there must be a letter.
        if (m_command == 'M')
            m_command = 'L';
        else if (m_command == 'Z')
            m_command = 0;
        return read;
    }

    bool segment(char previous)
    {
        switch (m_command) {
        case 'M':
            return moveTo(point());
        case 'L':
            return lineTo(point());
        case 'H': {
            const auto x = number();
            return x && lineTo(QPointF(origin().x() + *x, m_current.y()));
        }
        case 'V': {
            const auto y = number();
            return y && lineTo(QPointF(m_current.x(), origin().y() + *y));
        }
        case 'C':
            return cubicTo(point());
        case 'S':
            return cubicTo(previous == 'C' || previous == 'S' ? 2 * m_current - m_control : m_current);
        case 'Q':
            return quadTo(point());
        case 'T':
            return quadTo(previous == 'Q' || previous == 'T' ? 2 * m_current - m_control : m_current);
        case 'A':
            return arcTo();
        case 'Z':
            m_path.closeSubpath();
            m_current = m_start;
            return true;
        default:
            return false;
        }
    }

    bool moveTo(std::optional<QPointF> to)
    {
        if (to) {
            m_path.moveTo(*to);
            m_start = m_current = *to;
        }
        return to.has_value();
    }

    bool lineTo(std::optional<QPointF> to)
    {
        if (to) {
            m_path.lineTo(*to);
            m_current = *to;
        }
        return to.has_value();
    }

    bool cubicTo(std::optional<QPointF> first)
    {
        const auto second = first ? point() : std::nullopt;
        const auto to = second ? point() : std::nullopt;
        if (to) {
            m_path.cubicTo(*first, *second, *to);
            m_control = *second;
            m_current = *to;
        }
        return to.has_value();
    }

    bool quadTo(std::optional<QPointF> control)
    {
        const auto to = control ? point() : std::nullopt;
        if (to) {
            m_path.quadTo(*control, *to);
            m_control = *control;
            m_current = *to;
        }
        return to.has_value();
    }

    bool arcTo()
    {
        const auto rx = number();
        const auto ry = number();
        const auto rotation = number();
        const auto large = flag();
        const auto sweep = flag();
        const auto to = point();
        if (!rx || !ry || !rotation || !large || !sweep || !to)
            return false;
        drawArc(std::abs(*rx), std::abs(*ry), *rotation, *large != *sweep, *sweep, *to);
        m_current = *to;
        return true;
    }

    // SVG 1.1, F.6.5 and F.6.6: from the end points to the centre, in the space where the ellipse is the unit
    // circle.
    void drawArc(qreal rx, qreal ry, qreal rotation, bool leftOfChord, bool sweep, QPointF to)
    {
        if (qFuzzyIsNull(rx) || qFuzzyIsNull(ry) || m_current == to) {
            m_path.lineTo(to);
            return;
        }
        QTransform fromUnit = QTransform().rotate(rotation).scale(rx, ry);
        QTransform toUnit = fromUnit.inverted();
        QPointF start = toUnit.map(m_current);
        QPointF end = toUnit.map(to);
        const qreal half = std::hypot(end.x() - start.x(), end.y() - start.y()) / 2;
        if (half > 1) { // radii too small for the distance: scaled up until they just reach
            fromUnit.scale(half, half);
            toUnit = fromUnit.inverted();
            start = toUnit.map(m_current);
            end = toUnit.map(to);
        }
        const QPointF chord = end - start;
        const qreal length = std::hypot(chord.x(), chord.y());
        const qreal distance = std::sqrt(std::max(0.0, 1 - length * length / 4)) * (leftOfChord ? 1 : -1);
        const QPointF center = (start + end) / 2 + QPointF(-chord.y(), chord.x()) / length * distance;
        const qreal from = std::atan2(start.y() - center.y(), start.x() - center.x());
        qreal span = std::atan2(end.y() - center.y(), end.x() - center.x()) - from;
        constexpr qreal turn = 2 * std::numbers::pi;
        if (sweep && span < 0)
            span += turn;
        else if (!sweep && span > 0)
            span -= turn;
        drawUnitArc(fromUnit, center, from, span);
    }

    // Bezier curves of at most a quarter turn each; the error is below 0.03 % of the radius.
    void drawUnitArc(const QTransform &fromUnit, QPointF center, qreal from, qreal span)
    {
        const int pieces =
            std::max(1, static_cast<int>(std::ceil(std::abs(span) / (std::numbers::pi / 2) - 1e-9)));
        const qreal step = span / pieces;
        const qreal handle = 4.0 / 3.0 * std::tan(step / 4);
        for (int i = 0; i < pieces; ++i) {
            const qreal a = from + i * step;
            const qreal b = a + step;
            const QPointF unitA(std::cos(a), std::sin(a));
            const QPointF unitB(std::cos(b), std::sin(b));
            m_path.cubicTo(fromUnit.map(center + unitA + handle * QPointF(-unitA.y(), unitA.x())),
                           fromUnit.map(center + unitB - handle * QPointF(-unitB.y(), unitB.x())),
                           fromUnit.map(center + unitB));
        }
    }

    const char *m_next;
    const char *m_end;
    QPainterPath m_path;
    QPointF m_current;
    QPointF m_start;
    QPointF m_control;
    char m_command = 0;
    char m_previous = 0;
    bool m_relative = false;
};

} // namespace

QPainterPath parseSvgPath(QByteArrayView data)
{
    return PathReader(data).read();
}

} // namespace clockwell
