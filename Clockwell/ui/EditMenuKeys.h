#pragma once

class QKeyEvent;

namespace clockwell {

/// What a key means to a menu that is open beside a field.
enum class EditMenuKey { Next, Previous, Choose, Leave, Modifier, Typing };

/// `reached`: the keyboard has reached an entry, so that there is one to choose.
EditMenuKey editMenuKey(const QKeyEvent &event, bool reached);

/// The key that opens a menu: Menu, or Shift+F10.
bool isMenuKey(const QKeyEvent &event);

} // namespace clockwell
