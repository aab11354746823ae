#pragma once

#include <QByteArray>

class QUrl;

namespace clockwell {

/// The URL of the proxy that the system settings prescribe for `url`; empty: no proxy. May block for a while.
QByteArray systemProxy(const QUrl &url);

} // namespace clockwell
