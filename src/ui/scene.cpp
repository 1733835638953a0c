#include "ui/scene.h"

#include <QCoreApplication>
#include <QEvent>
#include <QQmlContext>
#include <utility>

#include "ui/interface_texts.h"
#include "ui/symbol_provider.h"
#include "ui/typeface.h"
#include "ui/window_loader.h"

namespace orbinex {

namespace {

QVariantMap texts() {
    QVariantMap map;
    for (const auto& [name, text] : InterfaceText::labels())
        map.insert(QString::fromUtf8(name), QString::fromUtf8(text));
    return map;
}

}  // namespace

Scene::Scene(const InterfaceModel::Sources& sources, InterfaceModel::Actions actions, WindowMade windowMade)
    : windowMade_(std::move(windowMade)), model_(sources, std::move(actions)) {
    engine_.addImportPath("qrc:/");
    engine_.addImageProvider("symbol", new SymbolProvider);
    engine_.rootContext()->setContextProperties(
        {{"app", QVariant::fromValue(&model_)}, {"texts", texts()}, {"typeface", installedTypeface()}});
}

Scene::~Scene() {
    panel_.reset();
    mainWindow_.reset();
    // Menus leave their entries to the loop to delete; those refer to the engine, and no loop may turn again.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::unique_ptr<QQuickWindow> Scene::load(const QString& file) {
    auto window = loadWindow(engine_, QUrl("qrc:/Orbinex/" + file));
    if (window) windowMade_(*window);
    return window;
}

QQuickWindow* Scene::mainWindow() {
    if (!mainWindow_) mainWindow_ = load("MainWindow.qml");
    return mainWindow_.get();
}

QQuickWindow* Scene::panel() {
    if (!panel_) panel_ = load("Panel.qml");
    return panel_.get();
}

bool Scene::isMainWindowSeen() const {
    return isMainWindowVisible() && mainWindow_->isExposed() &&
           mainWindow_->visibility() != QWindow::Minimized;
}

bool Scene::hasVisibleWindow() const {
    return isMainWindowVisible() || isPanelVisible();
}

}  // namespace orbinex
