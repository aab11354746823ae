#pragma once

namespace clockwell {

/// Tells assistive technology, from now on, what Qt 6.4 tells it wrongly. A disabled control is said to be so
/// (by Qt itself from 6.5 on) and not pressed; the role that QML declares counts, also for a button; a dialog
/// is modal, and what it covers is invisible. A FormTextField is seen as it is drawn: masked (by Qt itself
/// from 6.8 on), with the places of its characters and with its menu. Called by the constructors of what is
/// in question, because Qt asks as soon as QML gives one a name; the second call does nothing.
void installAccessibles();

} // namespace clockwell
