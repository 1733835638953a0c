#pragma once

#include <QObject>
#include <QString>
#include <functional>

#include "ui/connection_model.h"
#include "ui/message_model.h"
#include "ui/phones_model.h"
#include "ui/settings_model.h"

namespace orbinex {

/// Everything that the QML files show and call, as `app`.
class InterfaceModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(orbinex::ConnectionModel* connection READ connection CONSTANT)
    Q_PROPERTY(orbinex::PhonesModel* phones READ phones CONSTANT)
    Q_PROPERTY(orbinex::SettingsModel* settings READ settings CONSTANT)
    Q_PROPERTY(orbinex::MessageModel* message READ message CONSTANT)
    Q_PROPERTY(QString version READ version CONSTANT)

  public:
    struct Actions {
        std::function<void()> openMainWindow;
        std::function<void()> quit;
    };
    struct Sources {
        MainQueue& queue;
        TrustedDeviceStore& trustStore;
        AppRelocationManager& relocation;
        PairingQuestion& pairing;
        SettingsModel::Managers managers;
        ReportingUrlOpener& urls;
    };
    InterfaceModel(const Sources& sources, Actions actions);

    [[nodiscard]] ConnectionModel* connection() { return &connection_; }
    [[nodiscard]] PhonesModel* phones() { return &phones_; }
    [[nodiscard]] SettingsModel* settings() { return &settings_; }
    [[nodiscard]] MessageModel* message() { return &message_; }
    [[nodiscard]] QString version() const;

    Q_INVOKABLE void openMainWindow() { actions_.openMainWindow(); }
    Q_INVOKABLE void quit() { actions_.quit(); }
    Q_INVOKABLE void openAppStore();
    Q_INVOKABLE void openPrivacyPolicy();
    Q_INVOKABLE void openSupport();

  private:
    UrlOpener& urls_;
    Actions actions_;
    ConnectionModel connection_;
    PhonesModel phones_;
    SettingsModel settings_;
    MessageModel message_;
};

}  // namespace orbinex
