#include "ui/connection_model.h"

#include "app/system_settings_urls.h"
#include "ui/shown_text.h"

namespace orbinex {

ConnectionModel::ConnectionModel(CentralBLEManager& central, TrustedDeviceStore& trustStore, UrlOpener& urls)
    : central_(central), trustStore_(trustStore), urls_(urls) {
    const auto refresh = [this](const auto&) { update(); };
    observers_.push_back(central.phase.onDidChange(refresh));
    observers_.push_back(central.activeDevice.onDidChange(refresh));
    observers_.push_back(central.statusMessage.onDidChange(refresh));
    observers_.push_back(trustStore.devices.onDidChange(refresh));
    update();
}

void ConnectionModel::update() {
    LinkReport report{*central_.phase, std::nullopt, shownText(*central_.statusMessage)};
    if (const auto& active = *central_.activeDevice) report.activeName = shownName(active->name);
    auto next = connectionFace(report, !trustStore_.devices->empty());
    if (next == face_) return;
    face_ = std::move(next);
    Q_EMIT changed();
}

QString ConnectionModel::word() const {
    return QString::fromUtf8(phaseFace(face_.phase).word);
}
QString ConnectionModel::orbSymbol() const {
    return QString::fromUtf8(phaseFace(face_.phase).orbSymbol);
}
QString ConnectionModel::tint() const {
    switch (phaseFace(face_.phase).tint) {
        case Tint::accent: break;
        case Tint::success: return QStringLiteral("success");
        case Tint::danger: return QStringLiteral("danger");
    }
    return QStringLiteral("accent");
}
int ConnectionModel::panelAction() const {
    return static_cast<int>(phaseFace(face_.phase).panelAction);
}
QString ConnectionModel::panelActionLabel() const {
    return QString::fromUtf8(actionLabel(phaseFace(face_.phase).panelAction));
}
int ConnectionModel::windowAction() const {
    return static_cast<int>(phaseFace(face_.phase).windowAction);
}
QString ConnectionModel::windowActionLabel() const {
    return QString::fromUtf8(actionLabel(phaseFace(face_.phase).windowAction));
}
QString ConnectionModel::windowActionSymbol() const {
    return QString::fromUtf8(actionSymbol(phaseFace(face_.phase).windowAction));
}

void ConnectionModel::perform(int action) {
    switch (static_cast<LinkAction>(action)) {
        case LinkAction::none: break;
        case LinkAction::searchAgain: return central_.rescan();
        case LinkAction::cancel: return central_.cancelConnectionAttempt();
        case LinkAction::disconnect: return central_.disconnect();
        case LinkAction::openBluetoothSettings: return openBluetoothSettings();
    }
}

void ConnectionModel::openBluetoothSettings() {
    urls_.open(bluetoothSettingsUrlFor(*central_.bluetoothState));
}

}  // namespace orbinex
