#include "ui/symbol_provider.h"

#include "ui/symbol_image.h"

namespace orbinex {

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    constexpr int usualSize = 24;
    const QColor colour("#" + id.section('/', 1, 1));
    QImage image = symbolImage(id.section('/', 0, 0), colour.isValid() ? colour : QColor(Qt::white),
                               requestedSize.width() > 0 ? requestedSize.width() : usualSize);
    if (size) *size = image.size();
    return image;
}

}  // namespace orbinex
