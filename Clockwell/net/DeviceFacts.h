#pragma once

#include <QString>

namespace clockwell {

/// A stable identifier of this device for this app: upper-case hyphenated UUID text, or "ios-unknown" when
/// the machine has no identity. Read afresh on each call. The machine's own id never leaves it.
QString currentDeviceId();
/// The same with the machine id read from `machineIdPath`.
QString currentDeviceId(const QString &machineIdPath);

/// What the device calls itself, for people: a product name, or the processor family when there is none.
QString deviceModel();
/// The operating system's version text.
QString systemVersion();

} // namespace clockwell
