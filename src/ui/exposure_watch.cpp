#include "ui/exposure_watch.h"

#include <QEvent>
#include <QVariant>
#include <QWindow>

namespace orbinex {

bool ExposureWatch::eventFilter(QObject* window, QEvent* event) {
    if (event->type() == QEvent::Expose)
        window->setProperty("isExposed", static_cast<QWindow*>(window)->isExposed());
    return false;
}

}  // namespace orbinex
