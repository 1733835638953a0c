#pragma once

#include <QColor>
#include <QImage>
#include <QString>

namespace orbinex {

/// One of our symbols (symbols/NAME.svg) in one colour, square, `size` pixels wide. A name that is none, or a
/// size below one, gives a null image.
[[nodiscard]] QImage symbolImage(const QString& name, const QColor& colour, int size);

}  // namespace orbinex
