#pragma once

#include <QPointF>

namespace clockwell {

/// Tells when a pointer that went down becomes a drag in one direction: once it has moved by the platform's
/// drag distance, more that way than across. One that goes elsewhere first is none for good. Main thread.
class DirectedDrag
{
public:
    enum class Direction { Down, Right };

    explicit DirectedDrag(Direction direction) : m_direction(direction) {}

    /// The pointer went down where a drag may begin; positions are those of one item, in points.
    void begin(const QPointF &position);
    /// Whether the drag is running, with the pointer here now.
    bool moveTo(const QPointF &position);
    /// The pointer was let go, or lost: whether the drag was running.
    bool end();
    bool isRunning() const { return m_state == State::Running; }
    /// From where the pointer went down, in the drag's direction; negative on the other side.
    qreal distance() const { return along(m_last - m_start); }
    /// The part of a vector that lies in the drag's direction.
    qreal along(const QPointF &vector) const;

private:
    enum class State { None, Possible, Running };

    Direction m_direction;
    State m_state = State::None;
    QPointF m_start;
    QPointF m_last;
};

} // namespace clockwell
