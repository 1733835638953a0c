#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/uuid.h"

namespace orbinex {

/// The properties of one object, by interface.
using BluezInterfaces = QMap<QString, QVariantMap>;

/// What bluetoothd has told of its objects, by path. Property values are kept as they came and may be of any
/// type; the readers below take only what they expect.
class BluezObjects {
  public:
    void clear() { objects_.clear(); }
    /// Adds interfaces to an object, new or known; known ones get all their properties anew.
    void add(const QString& path, const BluezInterfaces& interfaces);
    void remove(const QString& path, const QStringList& interfaces);
    /// Of an interface that is not known, nothing is taken.
    void change(const QString& path, const QString& interface, const QVariantMap& changed,
                const QStringList& invalidated);

    /// Null when there is no such object, or it lacks the interface.
    [[nodiscard]] const QVariantMap* properties(const QString& path, const QString& interface) const;
    /// Objects with the interface, by path; with `parent`, only those below it.
    [[nodiscard]] std::vector<QString> pathsWith(const QString& interface, const QString& parent = {}) const;

  private:
    std::map<QString, BluezInterfaces> objects_;
};

/// An adapter, that is a Bluetooth controller.
struct BluezAdapter {
    QString path;
    /// Whether it can be a Low Energy central; true when the adapter does not tell its roles.
    bool isCentral = true;
    bool isPowered = false;

    friend bool operator==(const BluezAdapter&, const BluezAdapter&) = default;
};

/// What is known of a device's link over classic Bluetooth, as for music or a hotspot. Device1 tells of both
/// bearers in one, and an iPhone that only plays music is "Connected" as well.
enum class ClassicLink {
    none,
    possible,  ///< that it is connected may mean that one
    present,
};

/// A remote device.
struct BluezDevice {
    QString path;
    QString adapter;
    /// As "00:11:22:33:44:55". The identity address once the device is bonded, until then what it uses now.
    std::string address;
    bool isAddressRandom = false;
    std::string name;
    /// In dBm, while it is being heard.
    std::optional<int> rssi;
    /// Paired with keys that are kept. A bonded device's connection is encrypted before BlueZ uses it.
    bool isBonded = false;
    /// Over Low Energy, unless `classic` says that this is not known.
    bool isConnected = false;
    /// Of either bearer.
    bool areServicesResolved = false;
    ClassicLink classic = ClassicLink::none;
    /// The interface that has Connect and Disconnect for Low Energy, or for both bearers where they are not
    /// told apart.
    const char* linkInterface = nullptr;
    std::vector<UUID> services;

    [[nodiscard]] bool offers(const UUID& service) const;
    friend bool operator==(const BluezDevice&, const BluezDevice&) = default;
};

/// A characteristic of a connected device; it stays known after the connection.
struct BluezCharacteristic {
    QString path;
    QString service;
    UUID uuid;
    bool canWriteWithoutResponse = false;
    bool isNotifying = false;
    /// Whether notifications can be had through a socket.
    bool offersNotifySocket = false;

    friend bool operator==(const BluezCharacteristic&, const BluezCharacteristic&) = default;
};

/// Values of a wrong type count as absent.
std::optional<BluezAdapter> readAdapter(const BluezObjects& objects, const QString& path);
/// Nothing too when the device tells no proper address.
std::optional<BluezDevice> readDevice(const BluezObjects& objects, const QString& path);
/// Nothing too when it tells no proper UUID.
std::optional<BluezCharacteristic> readCharacteristic(const BluezObjects& objects, const QString& path);
/// The UUID of the service at this path.
std::optional<UUID> readServiceUUID(const BluezObjects& objects, const QString& path);

std::vector<BluezAdapter> readAdapters(const BluezObjects& objects);
/// The device's service with this UUID, empty when it has none; the newest path when there are several.
QString findService(const BluezObjects& objects, const QString& device, const UUID& uuid);
std::vector<BluezCharacteristic> characteristicsOf(const BluezObjects& objects, const QString& service);

}  // namespace orbinex
