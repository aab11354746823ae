#pragma once

#include <QStringList>

namespace clockwell {

/// The pieces of a text that are drawn side by side so that its digits keep their places: each digit is one,
/// what stands between them another. A text that is not all in Latin letters stays in one piece: other
/// scripts join their letters, put marks on them or run leftwards.
QStringList tabularCells(const QString &text);

/// Whether the piece is a digit, and so takes the width of the widest one.
bool isDigitCell(const QString &cell);

} // namespace clockwell
