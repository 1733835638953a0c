#include "ui/settings_model.h"

#include "ui/interface_texts.h"

namespace orbinex {

namespace {

/// What stands for Bluetooth that is not powered on.
const char* bluetoothStateLabel(BluetoothState state) {
    switch (state) {
        case BluetoothState::unsupported: return InterfaceText::bluetoothUnsupported;
        case BluetoothState::unauthorized: return InterfaceText::bluetoothNotAllowed;
        case BluetoothState::poweredOff: return InterfaceText::bluetoothOff;
        case BluetoothState::unknown:
        case BluetoothState::resetting:
        case BluetoothState::poweredOn: break;
    }
    return InterfaceText::bluetoothStarting;
}

}  // namespace

SettingsModel::SettingsModel(const Managers& managers) : managers_(managers) {
    const auto permissions = [this](const auto&) { Q_EMIT permissionsChanged(); };
    const auto loginItem = [this](const auto&) { Q_EMIT loginItemChanged(); };
    const auto preferences = [this](const auto&) { Q_EMIT preferencesChanged(); };
    observers_.push_back(managers.central.bluetoothState.onDidChange(permissions));
    observers_.push_back(managers.permission.isAccessibilityGranted.onDidChange(permissions));
    observers_.push_back(managers.permission.explanation.onDidChange(permissions));
    observers_.push_back(managers.loginItem.status.onDidChange(loginItem));
    observers_.push_back(managers.loginItem.lastError.onDidChange(loginItem));
    observers_.push_back(managers.preferences.autoConnect.onDidChange(preferences));
    observers_.push_back(managers.preferences.showInDock.onDidChange(preferences));
    observers_.push_back(managers.preferences.showMenuBarIcon.onDidChange(preferences));
    observers_.push_back(managers.preferences.isTrayPresent.onDidChange(preferences));
}

QString SettingsModel::inputExplanation() const {
    return QString::fromStdString(*managers_.permission.explanation);
}
bool SettingsModel::isBluetoothOn() const {
    return *managers_.central.bluetoothState == BluetoothState::poweredOn;
}
QString SettingsModel::bluetoothLabel() const {
    return QString::fromUtf8(bluetoothStateLabel(*managers_.central.bluetoothState));
}
bool SettingsModel::needsApproval() const {
    return *managers_.loginItem.status == LoginItemStatus::requiresApproval;
}
QString SettingsModel::loginItemError() const {
    return QString::fromStdString(managers_.loginItem.lastError->value_or(std::string()));
}

}  // namespace orbinex
