#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "base/main_queue.h"
#include "link/central_ble_manager.h"
#include "trust/trusted_device_store.h"
#include "ui/phone_list_model.h"

namespace orbinex {

/// The trusted iPhones in store order, and the untrusted ones in range, strongest signal first. An id that
/// is no longer there, because the list has changed since it was shown, is ignored.
class PhonesModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(orbinex::PhoneListModel* trusted READ trusted CONSTANT)
    Q_PROPERTY(orbinex::PhoneListModel* nearby READ nearby CONSTANT)

  public:
    /// How often "5 minutes ago" is said anew.
    static constexpr std::chrono::seconds dateInterval{60};

    /// All must outlive the model.
    PhonesModel(MainQueue& queue, CentralBLEManager& central, TrustedDeviceStore& trustStore);

    [[nodiscard]] PhoneListModel* trusted() { return &trusted_; }
    [[nodiscard]] PhoneListModel* nearby() { return &nearby_; }

    Q_INVOKABLE void connectTrusted(const QString& id);
    Q_INVOKABLE void connectNearby(const QString& id);
    Q_INVOKABLE void disconnectTrusted(const QString& id);
    Q_INVOKABLE void searchAgain();

  private:
    void update();
    [[nodiscard]] std::optional<TrustedDevice> trustedDevice(const QString& id) const;

    MainQueue& queue_;
    CentralBLEManager& central_;
    TrustedDeviceStore& trustStore_;
    PhoneListModel trusted_;
    PhoneListModel nearby_;
    std::vector<Subscription> observers_;
    Timer dates_;
};

}  // namespace orbinex
