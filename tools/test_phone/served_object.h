#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariantMap>
#include <optional>

#include "link/bluez/bluez_bus.h"

namespace orbinex::test_phone {

/// An object of ours on the bus, for bluetoothd alone.
class ServedObject : public QDBusVirtualObject {
  public:
    /// `bus` must outlive this.
    ServedObject(BluezBus& bus, const char* path, QDBusConnection::VirtualObjectRegisterOption extent);
    ~ServedObject() override;

    [[nodiscard]] QString introspect(const QString& path) const final;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) final;

  protected:
    /// The reply, or nothing to give it later with `send`, or never.
    virtual std::optional<QDBusMessage> answer(const QDBusMessage& call) = 0;
    void send(const QDBusMessage& message);

    /// The reply to a call that there is not.
    static QDBusMessage unknown(const QDBusMessage& call);
    /// The properties that a "Get" or "GetAll" asks for, out of all those of the interface.
    static QDBusMessage propertiesReply(const QDBusMessage& call, const char* interface,
                                        const QVariantMap& properties);

  private:
    BluezBus& bus_;
    QString path_;
};

}  // namespace orbinex::test_phone
