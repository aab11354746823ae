#pragma once

#include <QList>
#include <QPointF>

namespace clockwell {

/// Tells when a pointer that went down becomes a drag in one direction: once it has moved by the platform's
/// drag distance, more that way than across. One that goes elsewhere first is none for good. Positions are
/// those of one item, in points; times those of the events, in milliseconds. Main thread.
class DirectedDrag
{
public:
    enum class Direction { Down, Right };

    explicit DirectedDrag(Direction direction) : m_direction(direction) {}

    /// The pointer went down where a drag may begin.
    void begin(const QPointF &position, quint64 time);
    /// Whether the drag is running, with the pointer here now.
    bool moveTo(const QPointF &position, quint64 time);
    /// The pointer was let go, or lost: whether the drag was running.
    bool end();
    bool isRunning() const { return m_state == State::Running; }
    /// From where the pointer went down, in the drag's direction; negative on the other side.
    qreal distance() const { return along(m_last - m_start); }
    /// How fast the pointer moved in the drag's direction when it was let go at `time`, in points per second;
    /// 0 when it had been held still.
    qreal velocityAt(quint64 time) const;

private:
    enum class State { None, Possible, Running };
    struct Sample
    {
        quint64 time;
        qreal distance;
    };

    qreal along(const QPointF &vector) const;

    Direction m_direction;
    State m_state = State::None;
    QPointF m_start;
    QPointF m_last;
    QList<Sample> m_samples; // the last ones
};

} // namespace clockwell
