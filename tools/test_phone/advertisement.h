#pragma once

#include <functional>

#include "test_phone/served_object.h"

namespace orbinex::test_phone {

/// What the phone advertises (org.bluez.LEAdvertisement1): the service and its name.
class Advertisement final : public ServedObject {
  public:
    static constexpr const char* path = "/orbinex/test_phone/advertisement";

    explicit Advertisement(BluezBus& bus);

    /// Used from the next registration on.
    QString localName;
    /// bluetoothd has ended the advertisement by itself.
    std::function<void()> onReleased;

  protected:
    std::optional<QDBusMessage> answer(const QDBusMessage& call) override;
};

}  // namespace orbinex::test_phone
