#include "OneLine.h"

#include <algorithm>
#include <utility>

namespace clockwell {

namespace {

bool isBreak(QChar character)
{
    switch (character.unicode()) {
    case u'\n':
    case u'\v':
    case u'\f':
    case u'\r':
    case u'\u0085':
    case u'\u2028':
    case u'\u2029':
        return true;
    default:
        return false;
    }
}

} // namespace

bool OneLine::isBroken(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), isBreak);
}

OneLine OneLine::join(const QString &text, int cursor)
{
    OneLine joined;
    joined.text.reserve(text.size());
    bool broken = false;
    int position = 0;
    for (const QChar character : text) {
        if (isBreak(character)) {
            broken = !joined.text.isEmpty();
        } else {
            if (std::exchange(broken, false))
                joined.text += u' ';
            joined.text += character;
        }
        if (++position == cursor)
            joined.cursor = static_cast<int>(joined.text.size());
    }
    return joined;
}

} // namespace clockwell
