#include "FieldText.h"

#include "IsMasked.h"
#include "OneLine.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QQuickWindow>

#include <chrono>
#include <utility>

namespace clockwell {

namespace {

// Input methods of other processes answer when they get to it.
constexpr std::chrono::milliseconds lateCommitLimit{500};

QString textOf(const QQuickItem *input)
{
    return input->property("text").toString();
}

int cursorOf(const QQuickItem *input)
{
    return input->property("cursorPosition").toInt();
}

} // namespace

void FieldText::commitFocused(const QQuickWindow *window)
{
    if (const QQuickItem *input = window ? window->activeFocusItem() : nullptr)
        commit(input);
}

void FieldText::commit(const QQuickItem *input)
{
    if (auto *text = input->findChild<FieldText *>(QString(), Qt::FindDirectChildrenOnly))
        text->commit();
}

void FieldText::setInput(QQuickItem *input)
{
    if (m_input || !input)
        return;
    m_input = input;
    input->installEventFilter(this);
    m_inputText = textOf(input);
    connect(input, SIGNAL(textChanged()), this, SLOT(followText()));
    connect(input, SIGNAL(preeditTextChanged()), this, SLOT(followComposition()));
    connect(input, SIGNAL(cursorPositionChanged()), this, SIGNAL(cursorPositionChanged()));
    Q_EMIT inputChanged();
    showWanted();
}

QString FieldText::composed() const
{
    const bool composing = m_input && !m_input->property("preeditText").toString().isEmpty();
    return composing ? m_composed : QString();
}

QString FieldText::text() const
{
    if (!m_input)
        return m_wanted.value_or(QString());
    const QString text = textOf(m_input);
    const auto room = m_input->property("maximumLength").toInt() - text.size();
    return OneLine::join(QString(text).insert(cursorOf(m_input), composed().left(room)), 0).text;
}

void FieldText::setText(const QString &text)
{
    m_wanted = text;
    if (m_input)
        showWanted();
}

int FieldText::cursorPosition() const
{
    return m_input ? cursorOf(m_input) + static_cast<int>(composed().size()) : 0;
}

void FieldText::setCursorPosition(int position)
{
    if (m_input && !isComposing())
        m_input->setProperty("cursorPosition", position);
}

void FieldText::followText()
{
    if (m_joining)
        return;
    const QString text = textOf(m_input);
    if (OneLine::isBroken(text)) {
        const OneLine joined = OneLine::join(text, cursorOf(m_input));
        m_joining = true; // nobody hears of it before the cursor is where it belongs
        m_input->setProperty("text", joined.text);
        m_input->setProperty("cursorPosition", joined.cursor);
        m_joining = false;
    }
    m_inputText = textOf(m_input);
    tell();
}

void FieldText::followComposition()
{
    // Where the input's own text changes with it, that has still to be said, and is said last.
    if (textOf(m_input) == m_inputText)
        tell();
}

void FieldText::tell()
{
    Q_EMIT textChanged();
    showWanted();
}

void FieldText::showWanted()
{
    if (m_wanted && !isComposing())
        m_input->setProperty("text", *std::exchange(m_wanted, std::nullopt));
}

void FieldText::commit()
{
    const QString composed = this->composed();
    if (composed.isEmpty())
        return;
    const QString before = textOf(m_input);
    if (m_input->hasActiveFocus())
        QGuiApplication::inputMethod()->commit();
    if (isComposing())
        take(this->composed());
    else if (textOf(m_input) == before)
        take(composed); // it has been dropped
    else
        return; // committed, as it was or as what the input method makes of it
    if (m_input->hasActiveFocus())
        QGuiApplication::inputMethod()->reset();
}

void FieldText::take(const QString &composed)
{
    QInputMethodEvent commit;
    commit.setCommitString(composed);
    QCoreApplication::sendEvent(m_input, &commit);
    m_taken = composed;
    m_lateCommit.setRemainingTime(lateCommitLimit);
}

bool FieldText::isLateCommit(const QInputMethodEvent *event)
{
    if (m_taken.isEmpty() || (event->commitString().isEmpty() && event->preeditString().isEmpty()))
        return false;
    const QString taken = std::exchange(m_taken, QString());
    return event->commitString() == taken && event->preeditString().isEmpty() && !m_lateCommit.hasExpired();
}

bool FieldText::hear(QInputMethodEvent *event)
{
    if (isLateCommit(event))
        return true;
    m_composed = event->preeditString();
    if (m_composed.isEmpty() || !isMasked(m_input))
        return false;
    // The input masks its own text only.
    const QString mask = m_input->property("passwordCharacter").toString().left(1);
    QInputMethodEvent masked(mask.repeated(m_composed.size()), event->attributes());
    masked.setCommitString(event->commitString(), event->replacementStart(), event->replacementLength());
    m_masking = true;
    QCoreApplication::sendEvent(m_input, &masked);
    m_masking = false;
    event->setAccepted(masked.isAccepted());
    followComposition(); // what is shown may be the same as before
    return true;
}

bool FieldText::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::InputMethod:
        return !m_masking && hear(static_cast<QInputMethodEvent *>(event));
    case QEvent::MouseButtonPress: // moves the cursor, for which the input would drop what is being composed
        commit();
        return false;
    case QEvent::FocusOut: // the window has already asked the input method to commit
        if (isComposing())
            take(composed());
        return false;
    default:
        return false;
    }
}

} // namespace clockwell
