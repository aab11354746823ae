#pragma once

#include <QByteArray>

class QUrl;

namespace clockwell {

/// The URL of the proxy through which the system wants `url` to be asked for; empty: none. May take a while.
QByteArray systemProxy(const QUrl &url);

} // namespace clockwell
