#include "OpenEditMenu.h"

#include "EditMenuPlacement.h"
#include "Modal.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QPointerEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlInfo>
#include <QQuickWindow>

#include <algorithm>

namespace clockwell {

namespace {

/// The dialog or sheet around the field: what stands elsewhere is out of reach while that is open. Else all
/// of the window.
QQuickItem *hostOf(QQuickItem *field)
{
    for (QQuickItem *around = field->parentItem(); around; around = around->parentItem())
        if (qobject_cast<Modal *>(around))
            return around;
    return field->window()->contentItem();
}

} // namespace

OpenEditMenu::OpenEditMenu(QQuickItem *input, QQuickItem *field, const QList<EditAction> &actions,
                           QObject *parent)
    : QObject(parent), m_input(input), m_field(field), m_host(hostOf(field)), m_actions(actions)
{}

OpenEditMenu::~OpenEditMenu() = default;

bool OpenEditMenu::show(const QUrl &looks)
{
    QQmlComponent component(qmlEngine(m_field), looks);
    QObject *object = component.createWithInitialProperties(
        {{QStringLiteral("menu"), QVariant::fromValue(this)}}, qmlContext(m_field));
    m_item.reset(qobject_cast<QQuickItem *>(object));
    if (!m_item) {
        qmlWarning(m_field) << component.errorString();
        delete object;
        return false;
    }
    m_open = true;
    m_item->setParentItem(m_host);
    m_item->setZ(1);
    followField();
    place();
    announce(true);
    return true;
}

void OpenEditMenu::followField()
{
    QQuickWindow *window = m_input->window();
    window->installEventFilter(this);
    connect(window, &QQuickWindow::afterAnimating, this, &OpenEditMenu::place); // all has its place then
    connect(window, &QQuickWindow::widthChanged, this, &OpenEditMenu::close);
    connect(window, &QQuickWindow::activeFocusItemChanged, this,
            [this] { m_input->hasActiveFocus() ? void() : close(); });
    connect(m_input, &QQuickItem::visibleChanged, this, &OpenEditMenu::close);
    connect(m_input, &QQuickItem::enabledChanged, this, &OpenEditMenu::close);
    connect(m_input, &QQuickItem::windowChanged, this, &OpenEditMenu::close);
    connect(m_input, SIGNAL(textChanged()), this, SLOT(close()));
    connect(m_input, SIGNAL(preeditTextChanged()), this, SLOT(close()));
    connect(m_input, SIGNAL(echoModeChanged(QQuickTextInput::EchoMode)), this, SLOT(close()));
}

void OpenEditMenu::close()
{
    if (!m_open)
        return;
    m_open = false; // the item stays a little: it may be the sender of the signal that leads here
    announce(false);
    disconnect(m_input, nullptr, this, nullptr);
    if (QQuickWindow *window = m_item->window()) {
        window->removeEventFilter(this);
        window->disconnect(this);
    }
    m_item->setVisible(false);
    Q_EMIT closed();
}

QStringList OpenEditMenu::titles() const
{
    QStringList titles;
    std::transform(m_actions.begin(), m_actions.end(), std::back_inserter(titles), editActionTitle);
    return titles;
}

void OpenEditMenu::setCurrent(int current)
{
    if (current == m_current)
        return;
    m_current = current;
    Q_EMIT currentChanged();
}

void OpenEditMenu::choose(int index)
{
    if (!m_open || index < 0 || index >= m_actions.size())
        return;
    QQuickItem *input = m_input;
    const EditAction action = m_actions.at(index);
    close();
    doEditAction(input, action);
}

QRectF OpenEditMenu::area() const
{
    const QInputMethod *keyboard = QGuiApplication::inputMethod();
    const qreal covered = keyboard->isVisible()
                              ? keyboard->keyboardRectangle().height() / m_input->window()->devicePixelRatio()
                              : 0;
    return {0, 0, m_host->width(), m_host->height() - covered};
}

qreal OpenEditMenu::room() const
{
    return area().width() - 2 * editMenuGap;
}

/// Of what is selected, or where the cursor is, as far as it is seen.
qreal OpenEditMenu::middle() const
{
    qreal sum = 0;
    for (const char *end : {"selectionStart", "selectionEnd"}) {
        QRectF cursor;
        QMetaObject::invokeMethod(m_input, "positionToRectangle", Q_RETURN_ARG(QRectF, cursor),
                                  Q_ARG(int, m_input->property(end).toInt()));
        sum += std::clamp(cursor.x(), 0.0, std::max(0.0, m_input->width()));
    }
    return m_input->mapToItem(m_host, QPointF(sum / 2, 0)).x();
}

void OpenEditMenu::place()
{
    const QRectF field = m_field->mapRectToItem(m_host, m_field->boundingRect());
    m_item->setPosition(placeEditMenu(field, middle(), m_item->size(), area()));
}

void OpenEditMenu::announce(bool open)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(m_item.get(), open ? QAccessible::PopupMenuStart : QAccessible::PopupMenuEnd);
    QAccessible::updateAccessibility(&event);
}

} // namespace clockwell
