#pragma once

#include <QPainterPath>
#include <QStringList>

namespace clockwell {

/// Every name that a Symbol can show.
QStringList symbolNames();

/// The outline of a symbol in a square of 256 units, read once and kept; empty for a name that is not in the
/// table.
QPainterPath symbolPath(const QString &name);

} // namespace clockwell
