#pragma once

#include <QQmlEngine>
#include <QQuickWindow>
#include <QString>
#include <functional>
#include <memory>

#include "ui/interface_model.h"

namespace orbinex {

/// The QML side of the interface: the engine and the two windows, each made when it is first asked for. All
/// of it goes with this object, so that it need not be in memory while no window is open.
class Scene final {
  public:
    /// `windowMade` is called once for each window, before it is shown.
    using WindowMade = std::function<void(QQuickWindow&)>;
    Scene(const InterfaceModel::Sources& sources, InterfaceModel::Actions actions, WindowMade windowMade);
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene();

    [[nodiscard]] InterfaceModel& model() { return model_; }
    /// Not shown yet; null when it cannot be made, because QML modules are missing, which is then said on the
    /// standard error stream.
    [[nodiscard]] QQuickWindow* mainWindow();
    [[nodiscard]] QQuickWindow* panel();
    [[nodiscard]] bool hasVisibleWindow() const;
    [[nodiscard]] bool isMainWindowVisible() const { return mainWindow_ && mainWindow_->isVisible(); }
    /// Something of it is on a screen: it is not minimised, and not on another desktop.
    [[nodiscard]] bool isMainWindowSeen() const;
    [[nodiscard]] bool isPanelVisible() const { return panel_ && panel_->isVisible(); }

  private:
    [[nodiscard]] std::unique_ptr<QQuickWindow> load(const QString& file);

    WindowMade windowMade_;
    InterfaceModel model_;
    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> mainWindow_;
    std::unique_ptr<QQuickWindow> panel_;
};

}  // namespace orbinex
