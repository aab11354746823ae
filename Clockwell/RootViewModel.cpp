#include "RootViewModel.h"

#include <utility>

namespace clockwell {

RootViewModel::RootViewModel(QObject *parent) : QObject(parent) {}

void RootViewModel::componentComplete()
{
    connect(m_auth, &AuthStore::phaseChanged, this, &RootViewModel::followPhase);
    followPhase();
}

void RootViewModel::followPhase()
{
    using Phase = AuthStore::Phase;
    const auto previous = std::exchange(m_shown, m_auth->phase());
    if (m_shown == previous)
        return;
    // Only transitions into and out of the signed-in state are animated, not the one from the spinner to the
    // sign-in.
    if (m_shown == Phase::SignedIn)
        Q_EMIT signedIn(true);
    else
        Q_EMIT signedOut(previous == Phase::SignedIn);
}

} // namespace clockwell
