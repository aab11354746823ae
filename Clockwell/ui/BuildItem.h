#pragma once

class QQmlComponent;
class QQuickItem;

namespace clockwell {

/// Builds `component` in the surroundings that it was declared in, as a child of `parent` that owns it, fills
/// it and has the focus in its scope. Null, with a warning, when there is nothing to build. A Loader would do
/// but for Qt 6.4, where it cannot build components that are bound to their surroundings. Main thread.
QQuickItem *buildItem(QQmlComponent *component, QQuickItem *parent);

} // namespace clockwell
