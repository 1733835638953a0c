#include "phone_user.h"

#include <algorithm>
#include <string>

#include "protocol/daw_command.h"

namespace orbinex::demo {

void PhoneUser::send(const DecodedPacket& packet) {
    phone_.send(packet);
    window_.show(packet);
    loop_.linger(pace_);
}

void PhoneUser::control(std::string_view command) {
    if (const auto decoded = DAWCommand::decode(command)) phone_.send(*decoded);
    loop_.linger(pace_);
}

void PhoneUser::move(double deltaX, double deltaY) {
    send({DecodedPacket::MouseMove{static_cast<float>(deltaX), static_cast<float>(deltaY)}});
}

void PhoneUser::tap(int count, MouseButton button) {
    send({DecodedPacket::MouseClick{button, static_cast<std::uint8_t>(count)}});
}

void PhoneUser::change(MouseButton button, KeyState state) {
    send({DecodedPacket::MouseButtonChange{button, state}});
}

void PhoneUser::scroll(double deltaX, double deltaY) {
    send({DecodedPacket::MouseScroll{static_cast<float>(deltaX), static_cast<float>(deltaY)}});
}

void PhoneUser::type(std::string_view text) {
    while (!text.empty()) {
        const auto end = std::min(text.find(' '), text.size() - 1) + 1;
        send({DecodedPacket::Text{std::string(text.substr(0, end)), {}, std::nullopt}});
        text.remove_prefix(end);
    }
}

void PhoneUser::command(std::string_view character, std::uint16_t fallbackKeycode) {
    send({DecodedPacket::Text{std::string(character), ModifierFlags::command, fallbackKeycode}});
}

void PhoneUser::keyDown(std::uint16_t keycode, ModifierFlags modifiers) {
    send({DecodedPacket::KeyStroke{keycode, modifiers, KeyState::pressed}});
}

void PhoneUser::keyUp(std::uint16_t keycode, ModifierFlags modifiers) {
    send({DecodedPacket::KeyStroke{keycode, modifiers, KeyState::released}});
}

void PhoneUser::strike(std::uint16_t keycode, ModifierFlags modifiers) {
    keyDown(keycode, modifiers);
    keyUp(keycode, modifiers);
}

}  // namespace orbinex::demo
