#pragma once

#include <QQuickItem>

namespace clockwell {

/// What every control that is pressed has in common: finger, mouse, Space and Enter, and one action `press()`
/// for assistive technology. Nothing of it works while the item is disabled or hidden. However small it is
/// drawn, it is hit within at least 44 x 44 points around its middle, except where another control is drawn.
/// A press that turns into a scroll is none.
class Pressable : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool pressed READ isPressed NOTIFY pressedChanged)
    Q_PROPERTY(bool focusVisible READ isFocusVisible NOTIFY focusVisibleChanged)

public:
    explicit Pressable(QQuickItem *parent = nullptr);

    bool isPressed() const { return m_pressed; }
    /// Focused by the keyboard, so that a ring has to show where it is.
    bool isFocusVisible() const { return m_focusVisible; }
    bool contains(const QPointF &point) const override;

    Q_INVOKABLE void press();

Q_SIGNALS:
    void triggered();
    void pressedChanged();
    void focusVisibleChanged();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    void setPressed(bool pressed);
    void setFocusVisible(bool visible);

    bool m_pressed = false;
    bool m_focusVisible = false;
};

} // namespace clockwell
