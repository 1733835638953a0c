#pragma once

#include <QQmlEngine>
#include <QQuickWindow>
#include <QUrl>
#include <memory>

namespace orbinex {

/// The window of a QML file, not shown yet. Null when it cannot be made, because QML modules are missing,
/// which is then said on the standard error stream.
[[nodiscard]] std::unique_ptr<QQuickWindow> loadWindow(QQmlEngine& engine, const QUrl& file);

}  // namespace orbinex
