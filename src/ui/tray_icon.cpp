#include "ui/tray_icon.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <utility>

#include "ui/connection_face.h"
#include "ui/interface_texts.h"
#include "ui/symbol_image.h"

namespace orbinex {

namespace {

/// Light with a dark edge, so that it is seen on trays of either kind.
QPixmap trayPixmap(const QString& symbol, int size) {
    const QColor light(0xee, 0xf2, 0xf6);
    const QColor dark(0, 0, 0, 0x60);
    const QImage edge = symbolImage(symbol, dark, size);
    const QImage face = symbolImage(symbol, light, size);
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    for (const auto& [x, y] : {std::pair(-1, 0), std::pair(1, 0), std::pair(0, -1), std::pair(0, 1)})
        painter.drawImage(x, y, edge);
    painter.drawImage(0, 0, face);
    return pixmap;
}

QIcon trayImage(const char* symbol) {
    QIcon icon;
    for (const int size : {22, 32, 48, 64}) icon.addPixmap(trayPixmap(QString::fromUtf8(symbol), size));
    return icon;
}

}  // namespace

TrayIcon::TrayIcon(MainQueue& queue, AppPreferences& preferences, CentralBLEManager& central, Actions actions)
    : queue_(queue),
      preferences_(preferences),
      central_(central),
      actions_(std::move(actions)),
      host_([this](bool isPresent) { followHost(isPresent); }) {
    observers_.push_back(preferences.showMenuBarIcon.onDidChange([this](bool) { follow(); }));
    followHost(host_.isPresent());
    observers_.push_back(central.phase.onDidChange([this](LinkPhase phase) {
        if (icon_) draw(phase);
    }));
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::followHost(bool isPresent) {
    absence_ =
        isPresent ? Timer() : queue_.after(trayPatience, [this] { preferences_.setTrayPresent(false); });
    if (!isPresent) return;
    follow();
    preferences_.setTrayPresent(true);
}

void TrayIcon::follow() {
    if (!*preferences_.showMenuBarIcon) return icon_.reset();
    // One that is there returns to a tray that does.
    if (isShown() || !host_.isPresent()) return;
    icon_ = std::make_unique<QSystemTrayIcon>();
    draw(*central_.phase);
    connect(icon_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context) actions_.clicked();
    });
    connect(icon_.get(), &QSystemTrayIcon::messageClicked, this, [this] { actions_.messageClicked(); });
    icon_->show();
}

void TrayIcon::draw(LinkPhase phase) {
    const PhaseFace face = phaseFace(phase);
    const QString name = QString::fromStdString(InterfaceText::trayIcon(face.word));
    if (name == icon_->toolTip()) return;
    icon_->setIcon(trayImage(face.traySymbol));
    icon_->setToolTip(name);
}

QRect TrayIcon::geometry() const {
    return icon_ ? icon_->geometry() : QRect();
}

bool TrayIcon::showMessage(const QString& title, const QString& text) {
    // An icon without a place of its own is drawn over the bus, and so would the message be.
    if (!host_.isPresent() || geometry().isEmpty() || !QSystemTrayIcon::supportsMessages()) return false;
    icon_->showMessage(title, text, icon_->icon());
    return true;
}

}  // namespace orbinex
