#pragma once

#include <QString>
#include <QVariantMap>
#include <functional>

namespace orbinex {

/// The faces of the interface: Futura where the person has it, else the nearest open one that is installed,
/// else the desktop's own.
struct Typeface {
    QString book;
    QString light;
    /// Some faces are drawn smaller than Futura at the same size; every size is multiplied by this.
    double scale = 1;
};
/// `hasFamily` tells whether a family is installed, `desktopFamily` is the desktop's own.
[[nodiscard]] Typeface chooseTypeface(const std::function<bool(const QString&)>& hasFamily,
                                      const QString& desktopFamily);
/// The choice among the fonts of the system, for the QML files, as `typeface`: `book`, `light`, `scale`, and
/// `natural`, the height of a line as the face itself has it, in font sizes. Needs a QGuiApplication.
[[nodiscard]] QVariantMap installedTypeface();

}  // namespace orbinex
