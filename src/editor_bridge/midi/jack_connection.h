#pragma once

#include <cstddef>
#include <memory>

#include <jack/jack.h>

#include "editor_bridge/midi/message_ring.h"
#include "editor_bridge/midi/midi_connection.h"
#include "editor_bridge/midi/midi_relay.h"

namespace orbinex {

/// The endpoints as two ports of one client of a JACK server: the one that JACK_DEFAULT_SERVER names, or
/// PipeWire's where its library stands in for JACK's. No server is ever started.
///
/// A client that has our name already, such as a second Orbinex, keeps it: JACK numbers ours ("-01"). The
/// ports' names are the same in both.
class JackConnection final : public MIDIConnection {
  public:
    /// Waits for the server's answer; turns off what the library prints.
    static std::unique_ptr<MIDIConnection> open(MIDIListener& listener);
    ~JackConnection() override;

    /// Goes out with the server's next period. Messages that a period has no room for go with those after.
    void send(const MIDIMessage& message) override { outgoing_.push(message); }

  private:
    /// Far more than a person can ask for while a server has its hiccups.
    static constexpr std::size_t mostWaiting = 131'072;

    /// Takes the client over.
    JackConnection(jack_client_t* client, MIDIListener& listener) : relay_(listener), client_(client) {}
    bool activate();
    // The server and all its clients wait while these run: nothing in them waits, locks or takes memory.
    void process(jack_nframes_t frames);
    void play(void* buffer);
    void receive(void* buffer);

    MessageRing outgoing_{mostWaiting};
    MIDIRelay relay_;
    jack_client_t* client_;
    jack_port_t* source_ = nullptr;
    jack_port_t* destination_ = nullptr;
};

}  // namespace orbinex
