#include "link/bluez/bluez_adapter_choice.h"

namespace orbinex {

QString chooseAdapter(std::span<const BluezAdapter> adapters, const QString& current) {
    QString usable;
    QString possible;
    for (const auto& adapter : adapters) {
        if (!adapter.isCentral) continue;
        const bool isCurrent = adapter.path == current;
        if (possible.isEmpty() || isCurrent) possible = adapter.path;
        if (adapter.isPowered && (usable.isEmpty() || isCurrent)) usable = adapter.path;
    }
    return usable.isEmpty() ? possible : usable;
}

BluetoothState bluetoothStateOf(BluezDaemon daemon, const BluezAdapter* adapter) {
    switch (daemon) {
        case BluezDaemon::unasked: return BluetoothState::unknown;
        case BluezDaemon::absent: return BluetoothState::unsupported;
        case BluezDaemon::silent: return BluetoothState::resetting;
        case BluezDaemon::refusing: return BluetoothState::unauthorized;
        case BluezDaemon::present: break;
    }
    if (!adapter) return BluetoothState::unsupported;
    return adapter->isPowered ? BluetoothState::poweredOn : BluetoothState::poweredOff;
}

}  // namespace orbinex
