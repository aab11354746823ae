#include "EditActions.h"

#include "FieldText.h"
#include "IsMasked.h"
#include "OneLine.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QQuickItem>

#include <algorithm>

namespace clockwell {

namespace {

int selectedLength(const QQuickItem *input)
{
    return input->property("selectionEnd").toInt() - input->property("selectionStart").toInt();
}

bool clipboardHoldsText()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    return data && data->hasText();
}

void paste(QQuickItem *input)
{
    FieldText::commit(input);
    const QString copied = QGuiApplication::clipboard()->text();
    const QString line = OneLine::join(copied, 0).text;
    if (line == copied) {
        QMetaObject::invokeMethod(input, "paste"); // can be undone on its own
        return;
    }
    const auto length = static_cast<int>(input->property("text").toString().size());
    const int room = input->property("maximumLength").toInt() - length + selectedLength(input);
    const QString text = line.left(std::max(0, room));
    if (text.isEmpty())
        return;
    QInputMethodEvent typed;
    typed.setCommitString(text);
    QGuiApplication::sendEvent(input, &typed);
}

} // namespace

QString editActionTitle(EditAction action)
{
    switch (action) {
    case EditAction::Cut:
        return QStringLiteral("Cut");
    case EditAction::Copy:
        return QStringLiteral("Copy");
    case EditAction::Paste:
        return QStringLiteral("Paste");
    case EditAction::SelectAll:
        return QStringLiteral("Select all");
    }
    return {};
}

QList<EditAction> editActions(const QQuickItem *input)
{
    QList<EditAction> actions;
    if (!input->isEnabled())
        return actions;
    const bool editable = !input->property("readOnly").toBool();
    const bool masked = isMasked(input);
    const int selected = selectedLength(input);
    if (selected > 0 && !masked && editable)
        actions.append(EditAction::Cut);
    if (selected > 0 && !masked)
        actions.append(EditAction::Copy);
    if (editable && clipboardHoldsText())
        actions.append(EditAction::Paste);
    if (input->property("text").toString().size() > selected)
        actions.append(EditAction::SelectAll);
    return actions;
}

void doEditAction(QQuickItem *input, EditAction action)
{
    switch (action) {
    case EditAction::Cut:
        QMetaObject::invokeMethod(input, "cut");
        break;
    case EditAction::Copy:
        QMetaObject::invokeMethod(input, "copy");
        break;
    case EditAction::Paste:
        paste(input);
        break;
    case EditAction::SelectAll:
        QMetaObject::invokeMethod(input, "selectAll");
        break;
    }
}

} // namespace clockwell
