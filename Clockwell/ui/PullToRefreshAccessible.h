#pragma once

#include "ItemAccessible.h"

namespace clockwell {

class PullToRefreshControl;

/// What assistive technology is told of the refreshing of a list: a button, and a busy alert while it
/// refreshes.
class PullToRefreshAccessible : public ItemAccessible
{
public:
    explicit PullToRefreshAccessible(PullToRefreshControl *control);

    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    QStringList actionNames() const override;
    void doAction(const QString &action) override;

private:
    PullToRefreshControl *control() const;
};

/// Makes this the interface of every PullToRefreshControl of the process; the second call does nothing.
void installPullToRefreshAccessible();

/// Tells assistive technology that the control has become busy, or no longer is. Screen readers read an alert
/// out when it is shown, wherever they are: becoming busy is told as that too.
void announceRefreshing(PullToRefreshControl *control);

} // namespace clockwell
