#pragma once

#include <QString>

namespace orbinex {

/// The faces of the interface: Futura where the person has it, else the nearest open one that is installed,
/// else the desktop's own.
struct Typeface {
    QString book;
    QString light;
    /// Some faces are drawn smaller than Futura at the same size; every size is multiplied by this.
    double scale = 1;
    /// The height of a line as the face itself has it, in font sizes.
    double natural = 1.2;
};
/// Needs a QGuiApplication. Looks through the fonts of the system.
[[nodiscard]] Typeface chooseTypeface();

}  // namespace orbinex
