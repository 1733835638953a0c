#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "app/accessibility_permission_manager.h"
#include "app/app_preferences.h"
#include "app/login_item_manager.h"
#include "link/central_ble_manager.h"

namespace orbinex {

/// Permissions and general settings as QML shows and changes them.
class SettingsModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isInputAllowed READ isInputAllowed NOTIFY permissionsChanged)
    /// What is missing, in the platform's words; may be empty.
    Q_PROPERTY(QString inputExplanation READ inputExplanation NOTIFY permissionsChanged)
    Q_PROPERTY(bool isBluetoothOn READ isBluetoothOn NOTIFY permissionsChanged)
    /// While it is not on.
    Q_PROPERTY(QString bluetoothLabel READ bluetoothLabel NOTIFY permissionsChanged)
    Q_PROPERTY(bool opensAtLogin READ opensAtLogin WRITE setOpensAtLogin NOTIFY loginItemChanged)
    Q_PROPERTY(bool needsApproval READ needsApproval NOTIFY loginItemChanged)
    /// Why the last change failed; empty when it did not.
    Q_PROPERTY(QString loginItemError READ loginItemError NOTIFY loginItemChanged)
    Q_PROPERTY(bool autoConnect READ autoConnect WRITE setAutoConnect NOTIFY preferencesChanged)
    Q_PROPERTY(bool showInDock READ showInDock WRITE setShowInDock NOTIFY preferencesChanged)
    /// The tray icon is wanted, and the desktop has no place for it.
    Q_PROPERTY(bool lacksTray READ lacksTray NOTIFY preferencesChanged)
    Q_PROPERTY(bool showInMenuBar READ showInMenuBar WRITE setShowInMenuBar NOTIFY preferencesChanged)

  public:
    struct Managers {
        CentralBLEManager& central;
        AccessibilityPermissionManager& permission;
        LoginItemManager& loginItem;
        AppPreferences& preferences;
    };
    /// All must outlive the model.
    explicit SettingsModel(const Managers& managers);

    [[nodiscard]] bool isInputAllowed() const { return *managers_.permission.isAccessibilityGranted; }
    [[nodiscard]] QString inputExplanation() const;
    [[nodiscard]] bool isBluetoothOn() const;
    [[nodiscard]] QString bluetoothLabel() const;
    [[nodiscard]] bool opensAtLogin() const { return managers_.loginItem.isOn(); }
    [[nodiscard]] bool needsApproval() const;
    [[nodiscard]] QString loginItemError() const;
    [[nodiscard]] bool autoConnect() const { return *managers_.preferences.autoConnect; }
    [[nodiscard]] bool showInDock() const { return *managers_.preferences.showInDock; }
    [[nodiscard]] bool showInMenuBar() const { return *managers_.preferences.showMenuBarIcon; }

    [[nodiscard]] bool lacksTray() const {
        return *managers_.preferences.showMenuBarIcon && !managers_.preferences.isTrayIconSeen();
    }

    void setOpensAtLogin(bool enabled) { managers_.loginItem.setEnabled(enabled); }
    void setAutoConnect(bool enabled) { managers_.preferences.setAutoConnect(enabled); }
    void setShowInDock(bool shown) { managers_.preferences.setShowInDock(shown); }
    void setShowInMenuBar(bool shown) { managers_.preferences.setShowMenuBarIcon(shown); }

    Q_INVOKABLE void allowInput() { managers_.permission.requestAccess(); }
    Q_INVOKABLE void openInputSettings() { managers_.permission.openAccessibilitySettings(); }
    Q_INVOKABLE void approveLoginItem() { managers_.loginItem.openSystemSettingsLoginItems(); }

  Q_SIGNALS:
    void permissionsChanged();
    void loginItemChanged();
    void preferencesChanged();

  private:
    Managers managers_;
    std::vector<Subscription> observers_;
};

}  // namespace orbinex
