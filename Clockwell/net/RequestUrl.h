#pragma once

#include <QMap>
#include <QUrl>

namespace clockwell {

/// The URL of an endpoint below the base. `path` and `query` are plain text: reserved characters are
/// percent-encoded, including the plus sign, which many servers decode as a space.
QUrl requestUrl(const QUrl &base, const QString &path, const QMap<QString, QString> &query);

} // namespace clockwell
