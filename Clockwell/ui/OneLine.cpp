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

void OneLine::setInput(QQuickItem *input)
{
    if (input == m_input || m_input)
        return;
    m_input = input;
    connect(input, SIGNAL(textChanged()), this, SLOT(follow()));
    Q_EMIT inputChanged();
}

OneLine::Joined OneLine::join(const QString &text, int cursor)
{
    Joined joined;
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

void OneLine::follow()
{
    if (m_joining)
        return;
    const QString text = m_input->property("text").toString();
    if (std::any_of(text.cbegin(), text.cend(), isBreak)) {
        const Joined joined = join(text, m_input->property("cursorPosition").toInt());
        m_joining = true; // nobody hears of it before the cursor is where it belongs
        m_input->setProperty("text", joined.text);
        m_input->setProperty("cursorPosition", joined.cursor);
        m_joining = false;
    }
    Q_EMIT textChanged();
}

} // namespace clockwell
