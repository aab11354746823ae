#pragma once

class QPointF;
class QQuickItem;

namespace clockwell {

/// Whether a control other than this one is drawn at a point of the scene: a Pressable or a text field, also
/// a disabled one, which takes no press itself. Looks only at what can be reached together with the control:
/// from within a dialog or sheet at what is in it.
bool isAnotherDrawnAt(const QQuickItem &control, const QPointF &scenePoint);

} // namespace clockwell
