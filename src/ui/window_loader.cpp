#include "ui/window_loader.h"

#include <QQmlComponent>

namespace orbinex {

std::unique_ptr<QQuickWindow> loadWindow(QQmlEngine& engine, const QUrl& file) {
    QQmlComponent component(&engine, file);
    std::unique_ptr<QObject> made(component.create());
    auto* const window = qobject_cast<QQuickWindow*>(made.get());
    if (!window) {
        qWarning("orbinex: the window cannot be shown: %s", qUtf8Printable(component.errorString()));
        return nullptr;
    }
    static_cast<void>(made.release());
    return std::unique_ptr<QQuickWindow>(window);
}

}  // namespace orbinex
