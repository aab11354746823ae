#include "FormTextField.h"

#include "Accessibles.h"
#include "ui/dialogs/DialogScope.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QInputMethod>
#include <QRegularExpression>
#include <QValidator>

#include <chrono>
#include <utility>

namespace clockwell {

namespace {

// Input methods of other processes answer when they get to it.
constexpr std::chrono::milliseconds lateCommitLimit{500};

/// Line breaks within the text become spaces, those at its ends go: what is copied often ends in one.
QString onOneLine(const QString &text)
{
    static const QRegularExpression breaks(QStringLiteral("[\\n-\\r\\x{85}\\x{2028}\\x{2029}]+"));
    return text.split(breaks, Qt::SkipEmptyParts).join(u' ');
}

/// Corrects a text before anybody hears of it.
class OneLine : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString &text, int &cursor) const override
    {
        cursor = static_cast<int>(onOneLine(text.left(cursor)).size());
        text = onOneLine(text);
        return Acceptable;
    }
};

} // namespace

FormTextField::FormTextField(QQuickItem *parent) : QQuickTextField(parent)
{
    installAccessibles();
    setValidator(new OneLine(this));
    // Where the finger goes afterwards scrolls nothing. The next press takes this back.
    connect(this, &QQuickTextField::pressAndHold, this, [this] { setKeepMouseGrab(true); });
}

QString FormTextField::text() const
{
    const QString own = QQuickTextField::text();
    return onOneLine(
        QString(own).insert(QQuickTextField::cursorPosition(), m_composed.left(maxLength() - own.size())));
}

void FormTextField::setText(const QString &text)
{
    m_wanted = text;
    if (m_composed.isEmpty())
        QQuickTextField::setText(*std::exchange(m_wanted, std::nullopt));
}

int FormTextField::cursorPosition() const
{
    return QQuickTextField::cursorPosition() + static_cast<int>(m_composed.size());
}

void FormTextField::setCursorPosition(int position)
{
    if (m_composed.isEmpty())
        QQuickTextField::setCursorPosition(position);
}

bool FormTextField::isWithinReach() const
{
    return isVisible() && isEnabled() && !DialogScope::covers(this);
}

void FormTextField::commit()
{
    const QString composed = m_composed;
    if (composed.isEmpty())
        return;
    const QString before = QQuickTextField::text();
    if (hasActiveFocus())
        QGuiApplication::inputMethod()->commit();
    if (m_composed.isEmpty() && QQuickTextField::text() != before)
        return; // committed, as it was or as what the input method makes of it
    take(composed);
    if (hasActiveFocus())
        QGuiApplication::inputMethod()->reset();
}

void FormTextField::take(const QString &composed)
{
    QInputMethodEvent commit;
    commit.setCommitString(composed);
    QCoreApplication::sendEvent(this, &commit);
    m_taken = composed;
    m_lateCommit.setRemainingTime(lateCommitLimit);
}

void FormTextField::pasteLine()
{
    commit();
    const QString copied = QGuiApplication::clipboard()->text();
    const QString line = onOneLine(copied);
    if (line == copied)
        return paste(); // can be undone on its own
    QInputMethodEvent typed;
    typed.setCommitString(line);
    QCoreApplication::sendEvent(this, &typed);
}

bool FormTextField::isLateCommit(const QInputMethodEvent &event)
{
    if (m_taken.isEmpty() || (event.commitString().isEmpty() && event.preeditString().isEmpty()))
        return false;
    const QString taken = std::exchange(m_taken, QString());
    return event.commitString() == taken && event.preeditString().isEmpty() && !m_lateCommit.hasExpired();
}

void FormTextField::inputMethodEvent(QInputMethodEvent *event)
{
    if (isLateCommit(*event))
        return;
    const QString before = QQuickTextField::text();
    const QString composedBefore = std::exchange(m_composed, event->preeditString());
    QInputMethodEvent masked(passwordCharacter().left(1).repeated(m_composed.size()), event->attributes());
    masked.setCommitString(event->commitString(), event->replacementStart(), event->replacementLength());
    QQuickTextField::inputMethodEvent(echoMode() == Normal ? event : &masked);
    if (QQuickTextField::text() == before && m_composed != composedBefore) {
        Q_EMIT textChanged();
        Q_EMIT textEdited();
    }
    if (m_wanted)
        setText(*m_wanted);
}

void FormTextField::keyPressEvent(QKeyEvent *event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->matches(QKeySequence::Paste))
        return pasteLine();
    if (isEnter && event->isAutoRepeat())
        return; // held too long on a menu, not meant to send the form
    if (event->key() == Qt::Key_Menu ||
        (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier))
        return event->isAutoRepeat() ? void() : menuRequested();
    if (isEnter)
        commit();
    QQuickTextField::keyPressEvent(event);
}

void FormTextField::focusOutEvent(QFocusEvent *event)
{
    if (!m_composed.isEmpty()) // the window has already asked the input method to commit
        take(QString(m_composed));
    QQuickTextField::focusOutEvent(event);
}

} // namespace clockwell
