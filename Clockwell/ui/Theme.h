#pragma once

#include "Palette.h"

#include <QColor>
#include <QFont>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace clockwell {

/// The look that every screen shares: palette, type, spacing and motion. One object for each QML engine; the
/// desktop's preferences are written into it by DesktopPreferences. Main thread. Lengths are points (logical
/// pixels), durations milliseconds.
class Theme : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QColor background READ background CONSTANT)
    Q_PROPERTY(QColor card READ card CONSTANT)
    Q_PROPERTY(QColor surface READ surface CONSTANT)
    Q_PROPERTY(QColor divider READ divider CONSTANT)
    Q_PROPERTY(QColor dim READ dim CONSTANT)
    Q_PROPERTY(QColor textPrimary READ textPrimary CONSTANT)
    Q_PROPERTY(QColor textSecondary READ textSecondary CONSTANT)
    Q_PROPERTY(QColor textMuted READ textMuted CONSTANT)
    Q_PROPERTY(QColor brand READ brand CONSTANT)
    Q_PROPERTY(QColor success READ success CONSTANT)
    Q_PROPERTY(QColor warning READ warning CONSTANT)
    Q_PROPERTY(QColor danger READ danger CONSTANT)
    Q_PROPERTY(QColor leave READ leave CONSTANT)
    Q_PROPERTY(QColor white READ white CONSTANT)
    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT)
    Q_PROPERTY(QString monospacedFamily READ monospacedFamily CONSTANT)
    Q_PROPERTY(qreal textScale READ textScale NOTIFY textScaleChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)
    Q_PROPERTY(int duration READ duration NOTIFY reducedMotionChanged)
    Q_PROPERTY(qreal margin READ margin CONSTANT)
    Q_PROPERTY(qreal unit READ unit CONSTANT)
    Q_PROPERTY(qreal touchTarget READ touchTarget CONSTANT)

public:
    explicit Theme(QObject *parent) : QObject(parent) {}
    /// For an engine, which from then on has the pictures too.
    static Theme *create(QQmlEngine *engine, QJSEngine *);

    /// The engine's one theme, owned by it. Null while no QML file has imported this module.
    static Theme *of(QQmlEngine &engine);

    QColor background() const { return QColor::fromRgb(palette::background); }
    QColor card() const { return QColor::fromRgb(palette::card); }
    QColor surface() const { return QColor::fromRgb(palette::surface); }
    QColor divider() const { return QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.08F); }
    /// Over a screen that waits below a dialog.
    QColor dim() const { return QColor::fromRgbF(0.0F, 0.0F, 0.0F, 0.6F); }
    QColor textPrimary() const { return QColor::fromRgb(palette::textPrimary); }
    QColor textSecondary() const { return QColor::fromRgb(palette::textSecondary); }
    QColor textMuted() const { return QColor::fromRgb(palette::textMuted); }
    QColor brand() const { return QColor::fromRgb(palette::brand); }
    QColor success() const { return QColor::fromRgb(palette::success); }
    QColor warning() const { return QColor::fromRgb(palette::warning); }
    QColor danger() const { return QColor::fromRgb(palette::danger); }
    QColor leave() const { return QColor::fromRgb(palette::leave); }
    QColor white() const { return {Qt::white}; }

    /// The system's interface and fixed-width fonts; on Linux Inter and Fira Code.
    QString fontFamily() const;
    QString monospacedFamily() const;

    /// Factor on every text size, 1 unless the desktop asks for larger or smaller text. Limited to 0.5 ... 3.
    qreal textScale() const { return m_textScale; }
    void setTextScale(qreal scale);

    bool reducedMotion() const { return m_reducedMotion; }
    void setReducedMotion(bool reduced);
    /// Of changes of a screen or a banner; 0 with reduced motion.
    int duration() const { return m_reducedMotion ? 0 : 280; }

    /// At the sides of a screen.
    qreal margin() const { return 20; }
    /// Of the vertical rhythm.
    qreal unit() const { return 8; }
    /// The least width and height of what a finger has to hit.
    qreal touchTarget() const { return 44; }

    Q_INVOKABLE QColor statusColor(const QString &status) const;
    Q_INVOKABLE QString statusLabel(const QString &status) const;

    /// Where an Image finds the SVG file of this name, without ".svg", in the resource folder /clockwell. A
    /// valid tint replaces its colours. What is not there is not drawn, and Qt warns.
    Q_INVOKABLE QUrl picture(const QString &file, const QColor &tint = {}) const;

    /// The pieces of a text that a TabularLabel draws side by side: each digit is one, what stands between
    /// them another. A text that is not all in Latin letters stays in one piece: other scripts join their
    /// letters, put marks on them or run leftwards.
    Q_INVOKABLE QStringList tabularCells(const QString &text) const;
    /// The width of a TabularLabel with this text in this font, in points.
    Q_INVOKABLE qreal tabularWidth(const QString &text, const QFont &font) const;
    /// The widest of the ten digits in this font, in points: the cell that keeps changing numbers in place.
    Q_INVOKABLE qreal digitWidth(const QFont &font) const;

Q_SIGNALS:
    void textScaleChanged();
    void reducedMotionChanged();

private:
    qreal m_textScale = 1.0;
    bool m_reducedMotion = false;
};

} // namespace clockwell
