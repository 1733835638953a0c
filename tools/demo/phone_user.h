#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

#include "event_loop.h"
#include "phone_window.h"
#include "protocol/input_packet.h"
#include "sim/simulated_phone.h"

namespace orbinex::demo {

/// Key codes of the phone's keyboard (macOS virtual key codes).
namespace Key {
inline constexpr std::uint16_t a = 0;
inline constexpr std::uint16_t s = 1;
inline constexpr std::uint16_t c = 8;
inline constexpr std::uint16_t v = 9;
inline constexpr std::uint16_t b = 11;
inline constexpr std::uint16_t g = 5;
inline constexpr std::uint16_t k = 40;
inline constexpr std::uint16_t l = 37;
inline constexpr std::uint16_t returnKey = 36;
inline constexpr std::uint16_t tab = 48;
inline constexpr std::uint16_t deleteBackward = 51;
inline constexpr std::uint16_t escape = 53;
inline constexpr std::uint16_t home = 115;
inline constexpr std::uint16_t end = 119;
inline constexpr std::uint16_t left = 123;
inline constexpr std::uint16_t right = 124;
inline constexpr std::uint16_t down = 125;
}  // namespace Key

/// The person who holds the phone: each act becomes the packets that the phone sends for it.
class PhoneUser {
  public:
    /// Takes `pace` between one packet and the next, so that somebody can watch; zero for none. The window
    /// shows what is done.
    PhoneUser(EventLoop& loop, SimulatedPhone& phone, PhoneWindow& window, std::chrono::milliseconds pace)
        : loop_(loop), phone_(phone), window_(window), pace_(pace) {}

    /// Points.
    void move(double deltaX, double deltaY);
    /// A tap that is the count-th of its run: a double click is tap(1) and tap(2).
    void tap(int count, MouseButton button = MouseButton::left);
    void press(MouseButton button = MouseButton::left) { change(button, KeyState::pressed); }
    void release(MouseButton button = MouseButton::left) { change(button, KeyState::released); }
    void scroll(double deltaX, double deltaY);

    /// As the phone's keyboard sends text: a word or a character at a time.
    void type(std::string_view text);
    /// A character with the command key; the key code is for computers whose layout lacks the character.
    void command(std::string_view character, std::uint16_t fallbackKeycode);
    void keyDown(std::uint16_t keycode, ModifierFlags modifiers = {});
    void keyUp(std::uint16_t keycode, ModifierFlags modifiers = {});
    void strike(std::uint16_t keycode, ModifierFlags modifiers = {});
    /// What the phone's mixer, colour and transport panels send.
    void control(std::string_view command);

  private:
    void change(MouseButton button, KeyState state);
    void send(const DecodedPacket& packet);

    EventLoop& loop_;
    SimulatedPhone& phone_;
    PhoneWindow& window_;
    std::chrono::milliseconds pace_;
};

}  // namespace orbinex::demo
