#include "SelectAt.h"

#include "IsMasked.h"

#include <QQuickItem>

#include <cmath>

namespace clockwell {

namespace {

qreal cursorX(const QQuickItem *input, int position)
{
    QRectF cursor;
    QMetaObject::invokeMethod(const_cast<QQuickItem *>(input), "positionToRectangle",
                              Q_RETURN_ARG(QRectF, cursor), Q_ARG(int, position));
    return cursor.x();
}

/// The character under x; -1 beside the text.
int characterAt(const QQuickItem *input, qreal x)
{
    const auto length = input->property("text").toString().size();
    for (int index = 0; index < length; ++index) {
        const qreal one = cursorX(input, index);
        const qreal other = cursorX(input, index + 1);
        if (x >= std::min(one, other) && x < std::max(one, other))
            return index;
    }
    return -1;
}

} // namespace

int cursorPositionAt(const QQuickItem *input, qreal x)
{
    int nearest = 0;
    const auto length = input->property("text").toString().size();
    for (int position = 1; position <= length; ++position)
        if (std::abs(cursorX(input, position) - x) < std::abs(cursorX(input, nearest) - x))
            nearest = position;
    return nearest;
}

bool isSelectedAt(const QQuickItem *input, int position)
{
    const int start = input->property("selectionStart").toInt();
    const int end = input->property("selectionEnd").toInt();
    return start < end && start <= position && position <= end;
}

void selectAt(QQuickItem *input, qreal x)
{
    const int character = characterAt(input, x);
    if (character < 0 || input->property("text").toString().at(character).isSpace()) {
        input->setProperty("cursorPosition", cursorPositionAt(input, x));
    } else if (isMasked(input)) {
        QMetaObject::invokeMethod(input, "selectAll");
    } else {
        input->setProperty("cursorPosition", character);
        QMetaObject::invokeMethod(input, "selectWord");
    }
}

} // namespace clockwell
