#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "app/url_opener.h"
#include "link/central_ble_manager.h"
#include "trust/trusted_device_store.h"
#include "ui/connection_face.h"

namespace orbinex {

/// The link's phase as QML shows it, and what a person can do about it.
class ConnectionModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString word READ word NOTIFY changed)
    Q_PROPERTY(QString orbSymbol READ orbSymbol NOTIFY changed)
    /// "accent", "success" or "danger".
    Q_PROPERTY(QString tint READ tint NOTIFY changed)
    Q_PROPERTY(bool isPulsing READ isPulsing NOTIFY changed)
    Q_PROPERTY(bool isSecuring READ isSecuring NOTIFY changed)
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY changed)
    Q_PROPERTY(bool isBluetoothUnavailable READ isBluetoothUnavailable NOTIFY changed)
    Q_PROPERTY(QString panelStatus READ panelStatus NOTIFY changed)
    Q_PROPERTY(QString windowTitle READ windowTitle NOTIFY changed)
    /// Empty where there is no more to tell.
    Q_PROPERTY(QString windowDetail READ windowDetail NOTIFY changed)
    /// A number for perform(); 0 for nothing.
    Q_PROPERTY(int panelAction READ panelAction NOTIFY changed)
    Q_PROPERTY(QString panelActionLabel READ panelActionLabel NOTIFY changed)
    Q_PROPERTY(int windowAction READ windowAction NOTIFY changed)
    Q_PROPERTY(QString windowActionLabel READ windowActionLabel NOTIFY changed)
    Q_PROPERTY(QString windowActionSymbol READ windowActionSymbol NOTIFY changed)

  public:
    /// All must outlive the model.
    ConnectionModel(CentralBLEManager& central, TrustedDeviceStore& trustStore, UrlOpener& urls);

    [[nodiscard]] QString word() const;
    [[nodiscard]] QString orbSymbol() const;
    [[nodiscard]] QString tint() const;
    [[nodiscard]] bool isPulsing() const { return phaseFace(face_.phase).isPulsing; }
    [[nodiscard]] bool isSecuring() const { return face_.phase == LinkPhase::securing; }
    [[nodiscard]] bool isConnected() const { return face_.phase == LinkPhase::connected; }
    [[nodiscard]] bool isBluetoothUnavailable() const {
        return face_.phase == LinkPhase::bluetoothUnavailable;
    }
    [[nodiscard]] QString panelStatus() const { return QString::fromStdString(face_.panelStatus); }
    [[nodiscard]] QString windowTitle() const { return QString::fromStdString(face_.windowTitle); }
    [[nodiscard]] QString windowDetail() const { return QString::fromStdString(face_.windowDetail); }
    [[nodiscard]] int panelAction() const;
    [[nodiscard]] QString panelActionLabel() const;
    [[nodiscard]] int windowAction() const;
    [[nodiscard]] QString windowActionLabel() const;
    [[nodiscard]] QString windowActionSymbol() const;

    /// Does what a button said when it was pressed. A number that is no action is ignored.
    Q_INVOKABLE void perform(int action);
    Q_INVOKABLE void openBluetoothSettings();

  Q_SIGNALS:
    void changed();

  private:
    void update();

    CentralBLEManager& central_;
    TrustedDeviceStore& trustStore_;
    UrlOpener& urls_;
    ConnectionFace face_;
    std::vector<Subscription> observers_;
};

}  // namespace orbinex
