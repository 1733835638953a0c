#pragma once

#include <array>
#include <cstdint>
#include <functional>

namespace orbinex {

/// One MIDI message of a status byte and two data bytes.
using MIDIMessage = std::array<std::uint8_t, 3>;

/// A virtual MIDI device of this computer: a source that we play on and a destination that others play to.
/// Main thread only, but for what is said of onMessage.
class MIDIEndpoints {
  public:
    MIDIEndpoints() = default;
    MIDIEndpoints(const MIDIEndpoints&) = delete;
    MIDIEndpoints& operator=(const MIDIEndpoints&) = delete;
    virtual ~MIDIEndpoints() = default;

    /// Whether the source exists. It comes and goes with the system's MIDI service.
    [[nodiscard]] virtual bool isSourceOnline() const = 0;
    /// Called on the main thread whenever isSourceOnline() has changed.
    std::function<void()> onSourceChanged;

    /// Plays a message to everybody who listens to the source; nothing happens while there is none.
    virtual void send(const MIDIMessage& message) = 0;

    /// Called on a thread of the endpoints, which may wait, one message of the destination at a time, in
    /// their order; those of at least three bytes, cut to their first three. They are as the other program
    /// sent them: no byte of them can be relied on. Set before start().
    std::function<void(const MIDIMessage&)> onMessage;
    /// Creates the endpoints, now or as soon as the system has MIDI.
    virtual void start() = 0;
    /// Takes the endpoints away. Nothing is called any more once it has returned; start() may follow.
    virtual void stop() = 0;
};

}  // namespace orbinex
