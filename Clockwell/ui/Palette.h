#pragma once

#include <QColor>

namespace clockwell {

/// The colours of the app, opaque sRGB unless a comment says otherwise. The only place with colour literals.
namespace palette {

inline constexpr QRgb background = 0xff09152a;
inline constexpr QRgb card = 0xff0d1e3a;
inline constexpr QRgb surface = 0xff132645;
inline constexpr QRgb textPrimary = 0xffe6edf8;
inline constexpr QRgb textSecondary = 0xff8aa0c0;
inline constexpr QRgb textMuted = 0xff5b7ba8;
inline constexpr QRgb brand = 0xff2778f5;
inline constexpr QRgb success = 0xff34c759;
inline constexpr QRgb warning = 0xffff9f0a;
inline constexpr QRgb danger = 0xffff453a;
inline constexpr QRgb leave = 0xffbf5af2;

} // namespace palette

} // namespace clockwell
