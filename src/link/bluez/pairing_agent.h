#pragma once

#include <QDBusVirtualObject>
#include <QString>
#include <optional>
#include <string>

#include "base/lifetime.h"
#include "link/bluez/bluez_bus.h"
#include "link/pairing_prompt.h"

namespace orbinex {

/// Answers bluetoothd's questions about the one device that is being paired (org.bluez.Agent1), after asking
/// the user; rejects questions about any other, and anybody else's.
class PairingAgent final : public QDBusVirtualObject {
    Q_OBJECT
  public:
    static constexpr const char* path = "/orbinex/agent";

    /// Both must outlive this.
    PairingAgent(BluezBus& bus, PairingPrompt& prompt);
    ~PairingAgent() override;

    /// From now on questions about this device are put to the user, under this name.
    void serve(const QString& device, const std::string& name);
    /// From now on there is no such device; a question that is open is withdrawn.
    void rest();

    [[nodiscard]] QString introspect(const QString& objectPath) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  private:
    void ask(const QDBusMessage& question, const std::optional<std::string>& digits);
    void withdraw();

    BluezBus& bus_;
    PairingPrompt& prompt_;
    QString device_;
    std::string name_;
    /// Of the question that is open.
    std::unique_ptr<Lifetime> question_;
};

}  // namespace orbinex
