#pragma once

#include <QList>
#include <QString>

class QQuickItem;

namespace clockwell {

/// What can be done with the text of a field.
enum class EditAction { Cut, Copy, Paste, SelectAll };

QString editActionTitle(EditAction action);

/// Those that make sense for this TextInput now, in the order in which they are offered; none for one that is
/// disabled. The clipboard is asked only whether it holds text: reading it can wait for another app, and on
/// some phones is announced to the user. Main thread.
QList<EditAction> editActions(const QQuickItem *input);

/// Does it as the keyboard would: a paste replaces the selection in one change, on one line, and no longer
/// than the field takes. Main thread.
void doEditAction(QQuickItem *input, EditAction action);

} // namespace clockwell
