#pragma once

#include <QColor>
#include <QQuickImageProvider>
#include <QUrl>

namespace clockwell {

/// Draws the app's SVG files for QML's Image, which keeps what is drawn: as large as `sourceSize` says, at
/// the pixel ratio of the window. The provider "pictures" of an engine, which owns it. Main thread, because
/// no Image of the app loads asynchronously.
class Pictures : public QQuickImageProvider
{
public:
    Pictures() : QQuickImageProvider(Image) {}

    /// See Theme::picture().
    static QUrl url(const QString &file, const QColor &tint);

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

} // namespace clockwell
