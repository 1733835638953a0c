#pragma once

#include <QObject>

namespace orbinex {

/// Tells the windows that it filters the events of whether they are on a screen, by their property
/// `isExposed`: QML does not tell by itself of a window on another desktop.
class ExposureWatch final : public QObject {
  public:
    bool eventFilter(QObject* window, QEvent* event) override;
};

}  // namespace orbinex
