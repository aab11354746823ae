#include "Destination.h"

namespace clockwell {

Destination::Destination(QObject *parent) : QObject(parent) {}

void Destination::setStack(ScreenStack *stack)
{
    if (m_stack)
        m_stack->disconnect(this);
    m_stack = stack;
    if (m_stack)
        connect(m_stack, &ScreenStack::currentItemChanged, this, &Destination::followStack);
}

void Destination::setShown(bool shown)
{
    const bool turnedTrue = shown && !m_shown;
    m_shown = shown;
    if (turnedTrue && isOnTop())
        m_stack->push(m_file, m_properties);
    if (turnedTrue)
        followStack(); // if nothing was pushed, the flag must be cleared
}

bool Destination::isOnTop() const
{
    return m_stack && m_from && m_stack->currentItem() == m_from;
}

void Destination::followStack()
{
    if (m_shown && isOnTop())
        Q_EMIT left();
}

} // namespace clockwell
