#pragma once

#include <QString>

namespace clockwell {

/// A stable identifier of this device for this app: upper-case hyphenated UUID text, or "ios-unknown" if the
/// machine has no machine id. Read again on each call. The machine id itself is never disclosed.
QString currentDeviceId();
/// The same with the machine id read from `machineIdPath`.
QString currentDeviceId(const QString &machineIdPath);

/// The device's human-readable product name, or the processor family if it has none.
QString deviceModel();
/// The operating system's version text.
QString systemVersion();

} // namespace clockwell
