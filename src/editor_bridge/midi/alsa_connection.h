#pragma once

#include <memory>
#include <vector>

#include <RtMidi.h>

#include "editor_bridge/midi/midi_connection.h"

namespace orbinex {

/// The endpoints as ports of the kernel's sequencer, of a client each: the library makes two of the same
/// name. The sequencer knows clients by number, so that others may have the same names too. Once there it
/// stays: this connection is never lost.
class AlsaConnection final : public MIDIConnection {
  public:
    static std::unique_ptr<MIDIConnection> open(MIDIListener& listener);
    ~AlsaConnection() override = default;

    void send(const MIDIMessage& message) override;

  private:
    /// Throws RtMidiError.
    explicit AlsaConnection(MIDIListener& listener);
    void openDestination();
    static void deliver(double seconds, std::vector<unsigned char>* message, void* self);

    MIDIListener& listener_;
    RtMidiOut source_;
    /// Null when it cannot be made: then nothing is heard, but everything is played.
    std::unique_ptr<RtMidiIn> destination_;
};

}  // namespace orbinex
