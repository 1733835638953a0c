#pragma once

#include <QString>
#include <span>

#include "link/bluetooth_central.h"
#include "link/bluez/bluez_objects.h"

namespace orbinex {

/// How bluetoothd stands towards this program.
enum class BluezDaemon {
    unasked,   ///< nothing is known yet
    absent,    ///< it is not running
    refusing,  ///< it does not let this program in
    silent,    ///< it does not answer
    present,
};

/// The adapter to use: the one in use as long as it is usable, else the first usable one, else one that may
/// become so. Empty when there is none. Usable is one that can be a central and is powered.
QString chooseAdapter(std::span<const BluezAdapter> adapters, const QString& current);

/// `adapter` is the chosen one, null when there is none.
BluetoothState bluetoothStateOf(BluezDaemon daemon, const BluezAdapter* adapter);

}  // namespace orbinex
