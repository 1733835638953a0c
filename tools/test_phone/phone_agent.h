#pragma once

#include <functional>
#include <optional>
#include <string>

#include "test_phone/pairing_answer.h"
#include "test_phone/served_object.h"

namespace orbinex::test_phone {

/// The phone's end of a pairing (org.bluez.Agent1). bluetoothd has but one default agent for all controllers,
/// so questions about other controllers' devices come here too; they are rejected.
class PhoneAgent final : public ServedObject {
  public:
    static constexpr const char* path = "/orbinex/test_phone/agent";
    /// Can show six digits and say yes or no, as a phone can.
    static constexpr const char* capability = "DisplayYesNo";

    explicit PhoneAgent(BluezBus& bus);

    /// The controller whose devices may be asked about; empty for none.
    QString adapter;
    PairingAnswer pairing = PairingAnswer::accept;
    /// Gives the answer to the question that is open; false when there is none.
    bool giveAnswer(bool isAccepted);
    /// Nobody waits for an answer any more.
    void withdraw();

    /// A line about a question or its end.
    std::function<void(const std::string&)> onEvent;

  protected:
    std::optional<QDBusMessage> answer(const QDBusMessage& call) override;

  private:
    std::optional<QDBusMessage> ask(const QDBusMessage& call, const std::string& digits);

    std::optional<QDBusMessage> open_;
};

/// The address in the path of a device's object, such as ".../dev_00_AA_01_00_00_00"; empty when it has none.
std::string addressInPath(const QString& devicePath);

}  // namespace orbinex::test_phone
