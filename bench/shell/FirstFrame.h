#pragma once

#include <functional>

class QQuickWindow;

namespace clockwell::bench {

/// Ends the process after the first frame for which `ready` holds, printing the processor time since its
/// start in microseconds (user and system, all threads) and its proportional set size in kilobytes.
void reportFirstFrame(QQuickWindow *window, std::function<bool()> ready);

} // namespace clockwell::bench
