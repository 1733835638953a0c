#include "test_phone/characteristic.h"

#include "protocol/gatt.h"

namespace orbinex::test_phone {

std::string_view name(Characteristic characteristic) {
    switch (characteristic) {
        case Characteristic::mouse: return "mouse";
        case Characteristic::keyboard: return "keyboard";
        case Characteristic::info: return "info";
        case Characteristic::control: break;
    }
    return "control";
}

std::optional<Characteristic> characteristicNamed(std::string_view text) {
    for (const auto characteristic : allCharacteristics) {
        if (name(characteristic) == text) return characteristic;
    }
    return std::nullopt;
}

const UUID& uuid(Characteristic characteristic) {
    switch (characteristic) {
        case Characteristic::mouse: return OrbinexProtocol::mouseCharacteristicUUID;
        case Characteristic::keyboard: return OrbinexProtocol::keyboardCharacteristicUUID;
        case Characteristic::info: return OrbinexProtocol::infoCharacteristicUUID;
        case Characteristic::control: break;
    }
    return OrbinexProtocol::controlCharacteristicUUID;
}

std::vector<std::string> flags(Characteristic characteristic, InfoAccess infoAccess) {
    if (characteristic == Characteristic::control) return {"notify", "write-without-response", "write"};
    if (characteristic != Characteristic::info) return {"notify"};
    switch (infoAccess) {
        case InfoAccess::plain: return {"read"};
        case InfoAccess::encrypted: return {"encrypt-read"};
        case InfoAccess::authenticated: break;
    }
    return {"encrypt-authenticated-read"};
}

}  // namespace orbinex::test_phone
