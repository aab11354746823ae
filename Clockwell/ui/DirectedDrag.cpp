#include "DirectedDrag.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>
#include <cmath>
#include <utility>

namespace clockwell {

namespace {

constexpr qsizetype mostSamples = 16;
constexpr quint64 recent = 50;     // what counts for the velocity, in milliseconds
constexpr quint64 heldStill = 100; // after this long without a move

} // namespace

void DirectedDrag::begin(const QPointF &position, quint64 time)
{
    m_samples = {{time, 0}};
    m_start = m_last = position;
    m_state = State::Possible;
}

bool DirectedDrag::moveTo(const QPointF &position, quint64 time)
{
    m_last = position;
    m_samples.append({time, distance()});
    if (m_samples.size() > mostSamples)
        m_samples.removeFirst();
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

qreal DirectedDrag::velocityAt(quint64 time) const
{
    if (m_samples.size() < 2 || time > m_samples.last().time + heldStill)
        return 0;
    const Sample last = m_samples.last();
    qsizetype first = m_samples.size() - 2;
    while (first > 0 && m_samples[first - 1].time + recent >= last.time)
        --first;
    const auto elapsed = static_cast<qreal>(last.time) - static_cast<qreal>(m_samples[first].time);
    return elapsed > 0 ? (last.distance - m_samples[first].distance) / elapsed * 1000 : 0;
}

qreal DirectedDrag::along(const QPointF &vector) const
{
    return m_direction == Direction::Down ? vector.y() : vector.x();
}

} // namespace clockwell
