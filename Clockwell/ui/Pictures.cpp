#include "Pictures.h"

#include <QPainter>
#include <QSvgRenderer>

namespace clockwell {

QUrl Pictures::url(const QString &file, const QColor &tint)
{
    QUrl url(QStringLiteral("image://pictures/") + file);
    if (tint.isValid())
        url.setFragment(QString::number(tint.rgba(), 16));
    return url;
}

QImage Pictures::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const QUrl url(id);
    QSvgRenderer svg(QStringLiteral(":/clockwell/%1.svg").arg(url.path()));
    if (!svg.isValid() || requestedSize.isEmpty())
        return {};
    QImage image(requestedSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    svg.render(&painter);
    if (url.hasFragment()) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), QColor::fromRgba(url.fragment().toUInt(nullptr, 16)));
    }
    *size = image.size();
    return image;
}

} // namespace clockwell
