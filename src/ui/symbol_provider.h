#pragma once

#include <QQuickImageProvider>

namespace orbinex {

/// Gives QML our symbols: image://symbol/NAME/COLOUR with the colour as #rrggbb or #aarrggbb without the
/// hash.
class SymbolProvider final : public QQuickImageProvider {
  public:
    SymbolProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

}  // namespace orbinex
