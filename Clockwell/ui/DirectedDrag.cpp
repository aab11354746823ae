#include "DirectedDrag.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>
#include <cmath>
#include <utility>

namespace clockwell {

void DirectedDrag::begin(const QPointF &position)
{
    m_start = m_last = position;
    m_state = State::Possible;
}

bool DirectedDrag::moveTo(const QPointF &position)
{
    m_last = position;
    const QPointF moved = m_last - m_start;
    const qreal least = QGuiApplication::styleHints()->startDragDistance();
    if (m_state == State::Possible && std::max(std::abs(moved.x()), std::abs(moved.y())) >= least) {
        const qreal across = m_direction == Direction::Down ? moved.x() : moved.y();
        m_state = distance() > std::abs(across) ? State::Running : State::None;
    }
    return isRunning();
}

bool DirectedDrag::end()
{
    return std::exchange(m_state, State::None) == State::Running;
}

qreal DirectedDrag::along(const QPointF &vector) const
{
    return m_direction == Direction::Down ? vector.y() : vector.x();
}

} // namespace clockwell
