#pragma once

#include <QColor>
#include <QString>

namespace clockwell {

/// Colour of a server status code (attendance and account alike). Total: exact, case-sensitive comparison;
/// every code that is not known, the empty one included, is muted.
QRgb statusColor(QStringView status);

/// What a badge shows for a status code: the code with each "_" as a space, otherwise unchanged.
QString statusLabel(const QString &status);

} // namespace clockwell
