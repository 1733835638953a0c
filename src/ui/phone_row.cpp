#include "ui/phone_row.h"

#include "ui/interface_texts.h"
#include "ui/relative_date.h"
#include "ui/shown_text.h"

namespace orbinex {

namespace Text = InterfaceText;

namespace {

std::string windowStatus(const TrustedDevice& device, const TrustedStanding& standing, Date now) {
    if (standing.isActive) {
        switch (standing.phase) {
            case LinkPhase::connecting: return Text::connectingRow;
            case LinkPhase::securing: return Text::securingRow;
            case LinkPhase::connected: return Text::connectedWord;
            case LinkPhase::bluetoothUnavailable:
            case LinkPhase::searching: break;
        }
    }
    if (standing.isNearby) return Text::nearbyRow;
    if (device.lastConnected) return Text::lastConnected(relativeDate(*device.lastConnected, now));
    return Text::notNearbyRow;
}

std::string panelStatus(const TrustedStanding& standing) {
    if (standing.isActive) {
        return standing.phase == LinkPhase::connected ? Text::connectedWord : Text::connectingRow;
    }
    return standing.isNearby ? Text::nearbyRow : Text::notNearbyRow;
}

}  // namespace

PhoneRow trustedRow(const TrustedDevice& device, const TrustedStanding& standing, Date now) {
    return {.id = device.id,
            .name = shownName(device.name),
            .panelStatus = panelStatus(standing),
            .windowStatus = windowStatus(device, standing, now),
            .canConnect = !standing.isActive,
            .canDisconnect = standing.isActive && standing.phase == LinkPhase::connected,
            .bars = 0};
}

PhoneRow nearbyRow(const NearbyDevice& device) {
    return {.id = device.id,
            .name = shownName(device.name),
            .panelStatus = {},
            .windowStatus = {},
            .canConnect = true,
            .canDisconnect = false,
            .bars = signalBars(device.rssi)};
}

}  // namespace orbinex
