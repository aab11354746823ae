#pragma once

#include <QByteArrayView>
#include <QPainterPath>

namespace clockwell {

/// The outline that the path data of SVG 1.1 (section 8.3) describes, in its own units. Path data with an
/// error ends, as the standard asks, before the segment with the error.
QPainterPath parseSvgPath(QByteArrayView data);

} // namespace clockwell
