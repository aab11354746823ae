#pragma once

#include <QtGlobal>

class QQuickItem;

namespace clockwell {

/// The place in the text of a TextInput for a cursor at this x of it, in points.
int cursorPositionAt(const QQuickItem *input, qreal x);

/// Whether the place lies inside of the selection or at an end of it.
bool isSelectedAt(const QQuickItem *input, int position);

/// What a long press there does: selects the word, in a masked text everything (where words begin is part of
/// the secret); beside the text and between words it puts the cursor there. Main thread.
void selectAt(QQuickItem *input, qreal x);

} // namespace clockwell
