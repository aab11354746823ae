#pragma once

#include <QMap>
#include <QUrl>

namespace clockwell {

/// The URL of an endpoint below the base. Everything in `path` and `query` is plain text: what URLs reserve
/// is percent-encoded, also the plus sign, which many servers read as a blank.
QUrl requestUrl(const QUrl &base, const QString &path, const QMap<QString, QString> &query);

} // namespace clockwell
