#pragma once

#include <functional>
#include <string>
#include <vector>

#include "link/bluez/bluez_bus.h"
#include "link/bluez/bluez_objects.h"
#include "test_phone/advertisement.h"
#include "test_phone/call_queue.h"
#include "test_phone/command.h"
#include "test_phone/gatt_application.h"
#include "test_phone/host_watch.h"
#include "test_phone/phone_agent.h"

namespace orbinex::test_phone {

/// The phone's controller: registers on it what the phone offers, again whenever bluetoothd or the controller
/// has been away, and follows which computers are connected.
class PhoneRadio {
  public:
    using Done = CallQueue::Done;
    /// What is registered, or is to be.
    struct Presence {
        bool isServiceOffered = false;
        bool isAdvertising = false;
        bool isPowered = false;
    };

    /// `adapterName` as in the options. All references must outlive this.
    PhoneRadio(BluezBus& bus, std::string adapterName, GattApplication& application,
               Advertisement& advertisement, PhoneAgent& agent);

    /// Begins; the handlers below must be set.
    void start();
    void set(Command::Switch change, Done done);
    void drop(Done done);
    void forget(Done done);
    /// Unregisters everything, ends links, and leaves the controller as it was found.
    void leave(Done done);

    [[nodiscard]] const std::string& adapterName() const { return adapterName_; }
    /// The controller's; empty while it is away.
    [[nodiscard]] std::string address() const;
    [[nodiscard]] Presence presence() const;
    [[nodiscard]] const HostWatch& hosts() const { return hosts_; }

    /// The controller has been found; nothing is registered yet.
    std::function<void()> onFound;
    /// Everything that the phone offers is registered.
    std::function<void()> onReady;
    /// Why the phone is not on the air, at the start or from now on.
    std::function<void(const std::string&)> onAway;
    /// A line about computers that come and go.
    std::function<void(const std::string&)> onEvent;

  private:
    using Calls = CallQueue::Calls;

    void ownerChanged();
    void objectsTold(const BluezBus::Reply& reply);
    void review();
    void arrive();
    void goAway(const std::string& why);
    void reviewHosts();

    [[nodiscard]] const QVariantMap* adapterProperties() const;
    [[nodiscard]] Calls callsToArrive();
    /// What it takes to make the presence what it is wished to be.
    [[nodiscard]] Calls callsToConform();
    [[nodiscard]] Calls callsToLeave();
    [[nodiscard]] Calls callsToDisconnect();
    [[nodiscard]] BluezCall callToPower(bool isOn);
    [[nodiscard]] BluezCall callToOffer(bool isOn);
    [[nodiscard]] BluezCall callToAdvertise(bool isOn);

    BluezBus& bus_;
    std::string adapterName_;
    GattApplication& application_;
    Advertisement& advertisement_;
    PhoneAgent& agent_;
    CallQueue calls_;
    BluezObjects objects_;
    HostWatch hosts_;
    /// Empty while the controller is away.
    QString adapter_;
    Presence wished_{true, true, true};
    Presence registered_;
    bool isAgentRegistered_ = false;
    std::optional<bool> wasPowered_;
};

}  // namespace orbinex::test_phone
