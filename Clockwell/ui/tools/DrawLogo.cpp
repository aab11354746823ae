#include "Superellipse.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

namespace {

bool save(const QImage &image, const QString &name)
{
    if (name.endsWith(QStringLiteral(".png")))
        return image.save(name, "PNG");
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(reinterpret_cast<const char *>(image.constBits()),
                                                         image.sizeInBytes()) == image.sizeInBytes();
}

} // namespace

// DrawLogo SVG FILE SIDE RADIUS: draws a square SVG image, SIDE pixels a side, with continuous corners of
// RADIUS pixels, as a PNG file or else as bare premultiplied ARGB32 pixels in this machine's byte order.
int main(int argc, char **argv)
{
    if (argc != 5) {
        std::fputs("usage: clockwell_logo SVG FILE SIDE RADIUS\n", stderr);
        return 2;
    }
    QSvgRenderer logo(QString::fromLocal8Bit(argv[1]));
    const int side = QByteArray(argv[3]).toInt();
    const double radius = QByteArray(argv[4]).toDouble();
    if (!logo.isValid() || side <= 0) {
        std::fprintf(stderr, "%s cannot be drawn\n", argv[1]);
        return 1;
    }
    const QRectF square(0, 0, side, side);
    QImage drawn(side, side, QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    QPainter drawing(&drawn);
    drawing.setRenderHint(QPainter::Antialiasing);
    logo.render(&drawing, square);
    drawing.end();

    QImage image(drawn.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    // As a brush, not as a clip: a clip's edge is not smoothed.
    painter.fillPath(clockwell::continuousRectangle(square, radius), QBrush(drawn));
    painter.end();
    if (!save(image, QString::fromLocal8Bit(argv[2]))) {
        std::fprintf(stderr, "%s cannot be written\n", argv[2]);
        return 1;
    }
    return 0;
}
