#include "ui/symbol_image.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace orbinex {

QImage symbolImage(const QString& name, const QColor& colour, int size) {
    QFile file(":/orbinex/symbols/" + name + ".svg");
    if (size < 1 || !file.open(QIODevice::ReadOnly)) return {};
    QByteArray drawing = file.readAll();
    drawing.replace("currentColor", colour.name().toUtf8());
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid()) return {};
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(colour.alphaF());
    renderer.render(&painter);
    return image;
}

}  // namespace orbinex
