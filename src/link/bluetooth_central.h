#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/uuid.h"

namespace orbinex {

enum class BluetoothState {
    unknown,       ///< not heard of yet
    resetting,     ///< gone for a moment, will report again
    unsupported,   ///< no controller that can be a Low Energy central
    unauthorized,  ///< this program may not use Bluetooth
    poweredOff,
    poweredOn,
};

/// Why a Bluetooth operation failed.
struct BluetoothError {
    enum class Kind {
        attribute,  ///< `code` is an error code of the Attribute Protocol
        framework,  ///< `code` is one of the framework codes below
        other,      ///< only the description tells
    };
    /// Attribute Protocol error codes (Bluetooth Core Specification, Vol 3, Part F, 3.4.1.1).
    static constexpr int insufficientAuthentication = 5;
    static constexpr int insufficientEncryptionKeySize = 12;
    static constexpr int insufficientEncryption = 15;
    /// Framework codes.
    static constexpr int peerRemovedPairingInformation = 14;
    static constexpr int encryptionTimedOut = 15;

    Kind kind = Kind::other;
    int code = 0;
    /// A sentence for the user, in the platform's words.
    std::string description;

    friend bool operator==(const BluetoothError&, const BluetoothError&) = default;
};

/// A remote device, by the identifier that the platform has given it.
struct Peripheral {
    UUID identifier;
    /// The device's own name; may be empty.
    std::string name;

    friend bool operator==(const Peripheral&, const Peripheral&) = default;
};

struct Advertisement {
    Peripheral peripheral;
    /// The local name in the advertisement itself.
    std::optional<std::string> localName;
    /// Signal strength in dBm; 127 when there is no reading.
    int rssi = 127;
};

struct Characteristic {
    UUID uuid;
    bool canWriteWithoutResponse = false;

    friend bool operator==(const Characteristic&, const Characteristic&) = default;
};

enum class WriteType { withResponse, withoutResponse };

/// At whose wish something happens.
enum class Initiative {
    user,     ///< a person has just asked for it
    program,  ///< by itself
};

/// The platform's Bluetooth Low Energy central role. Everything runs on the main thread. No operation waits,
/// and none calls the delegate before it returns. Operations on a peripheral that is not connected, and any
/// operation while the state is not poweredOn, do nothing.
class BluetoothCentral {
  public:
    /// Told of everything that happens. `error` is null on success.
    class Delegate {
      public:
        virtual void bluetoothStateUpdated(BluetoothState state) = 0;
        virtual void peripheralDiscovered(const Advertisement& advertisement) = 0;
        virtual void peripheralConnected(const Peripheral& peripheral) = 0;
        /// A connect request ended without a connection.
        virtual void peripheralFailedToConnect(const Peripheral& peripheral, const BluetoothError* error) = 0;
        /// A connection ended, or (at the platform's choice) a request that was cancelled.
        virtual void peripheralDisconnected(const Peripheral& peripheral, const BluetoothError* error) = 0;
        /// The services found, of those asked for.
        virtual void servicesDiscovered(const Peripheral& peripheral, std::span<const UUID> services,
                                        const BluetoothError* error) = 0;
        virtual void characteristicsDiscovered(const Peripheral& peripheral, const UUID& service,
                                               std::span<const Characteristic> characteristics,
                                               const BluetoothError* error) = 0;
        /// A value was read or notified. It lives for the duration of the call only.
        virtual void valueUpdated(const Peripheral& peripheral, const UUID& characteristic, ByteView value,
                                  const BluetoothError* error) = 0;
        virtual void notificationStateUpdated(const Peripheral& peripheral, const UUID& characteristic,
                                              bool isNotifying, const BluetoothError* error) = 0;
        /// Services that were withdrawn or replaced; what was discovered of them is void.
        virtual void servicesInvalidated(const Peripheral& peripheral, std::span<const UUID> services) = 0;

      protected:
        ~Delegate() = default;
    };

    BluetoothCentral() = default;
    BluetoothCentral(const BluetoothCentral&) = delete;
    BluetoothCentral& operator=(const BluetoothCentral&) = delete;
    virtual ~BluetoothCentral() = default;

    /// Begins to report to the delegate, the state first. The platform may tell the user when Bluetooth is
    /// off.
    virtual void start(Delegate& delegate) = 0;
    /// Ends scanning and every connection and request; the delegate is not called any more.
    virtual void stop() = 0;

    [[nodiscard]] virtual bool isScanning() const = 0;
    /// Scans for advertisers of the service. One that stays in range is reported again from time to time, at
    /// least every 5 seconds.
    virtual void startScan(const UUID& service) = 0;
    virtual void stopScan() = 0;

    /// Those of the identifiers that the platform knows a device for.
    [[nodiscard]] virtual std::vector<Peripheral> retrievePeripherals(std::span<const UUID> identifiers) = 0;
    /// Devices with the service that are connected to this computer, on anybody's behalf.
    [[nodiscard]] virtual std::vector<Peripheral> retrieveConnectedPeripherals(const UUID& service) = 0;

    /// Asks for a connection. The request stays open until the device comes into range; asking again for an
    /// open request changes nothing, and a device that is connected is reported as connected again. A request
    /// made while an earlier connection is being cancelled takes effect after that. A device whose connection
    /// this side has just ended may be left in peace for a while, and a device that has to be paired first
    /// may be refused, unless the user asks; the name is the one that the user is then asked about.
    virtual void connect(const Peripheral& peripheral, Initiative initiative) = 0;
    /// Ends the connection or the request.
    virtual void cancelConnection(const UUID& peripheral) = 0;
    [[nodiscard]] virtual bool isConnected(const UUID& peripheral) const = 0;

    virtual void discoverServices(const UUID& peripheral, std::span<const UUID> services) = 0;
    virtual void discoverCharacteristics(const UUID& peripheral, const UUID& service,
                                         std::span<const UUID> characteristics) = 0;
    virtual void readValue(const UUID& peripheral, const UUID& characteristic) = 0;
    virtual void setNotify(const UUID& peripheral, const UUID& characteristic, bool enabled) = 0;
    virtual void writeValue(const UUID& peripheral, const UUID& characteristic, ByteView value,
                            WriteType type) = 0;
};

}  // namespace orbinex
