#include "editor_bridge/midi/jack_connection.h"

#include <algorithm>
#include <cstdint>

#include <jack/midiport.h>
#include <pthread.h>

#include "editor_bridge/midi_surface_names.h"

namespace orbinex {

namespace {

/// The library cancels its threads wherever they are when a client is closed, also in the midst of what it
/// has called us for. That waits while one of these lives.
class Uncancelled {
  public:
    Uncancelled() { ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
    Uncancelled(const Uncancelled&) = delete;
    Uncancelled& operator=(const Uncancelled&) = delete;
    // It is here that a cancelled thread ends, by an exception of a kind.
    ~Uncancelled() noexcept(false) { ::pthread_setcancelstate(before_, nullptr); }

  private:
    int before_ = 0;
};

}  // namespace

std::unique_ptr<MIDIConnection> JackConnection::open(MIDIListener& listener) {
    // Without a server, which is no error here, the library would complain at every attempt.
    jack_set_error_function([](const char*) {});
    jack_set_info_function([](const char*) {});
    jack_client_t* const client = jack_client_open(MIDISurfaceNames::client, JackNoStartServer, nullptr);
    if (!client) return nullptr;
    std::unique_ptr<JackConnection> connection(new JackConnection(client, listener));
    if (!connection->activate()) return nullptr;
    return connection;
}

JackConnection::~JackConnection() {
    jack_client_close(client_);
}

bool JackConnection::activate() {
    jack_on_shutdown(
        client_,
        [](void* self) {
            const Uncancelled untilDone;
            static_cast<JackConnection*>(self)->relay_.lose();
        },
        this);
    jack_set_process_callback(
        client_,
        [](jack_nframes_t frames, void* self) {
            const Uncancelled untilDone;
            static_cast<JackConnection*>(self)->process(frames);
            return 0;
        },
        this);
    // "Terminal": nothing passes through us. Workstations offer such ports for control surfaces.
    source_ = jack_port_register(client_, MIDISurfaceNames::source, JACK_DEFAULT_MIDI_TYPE,
                                 JackPortIsOutput | JackPortIsTerminal, 0);
    // Without it nothing is heard, but everything is played.
    destination_ = jack_port_register(client_, MIDISurfaceNames::destination, JACK_DEFAULT_MIDI_TYPE,
                                      JackPortIsInput | JackPortIsTerminal, 0);
    return source_ && jack_activate(client_) == 0;
}

void JackConnection::process(jack_nframes_t frames) {
    play(jack_port_get_buffer(source_, frames));
    if (destination_) receive(jack_port_get_buffer(destination_, frames));
}

void JackConnection::play(void* buffer) {
    jack_midi_clear_buffer(buffer);
    while (const auto* message = outgoing_.front()) {
        auto* const bytes = jack_midi_event_reserve(buffer, 0, message->size());
        if (!bytes) return;
        std::ranges::copy(*message, bytes);
        outgoing_.pop();
    }
}

void JackConnection::receive(void* buffer) {
    const std::uint32_t count = jack_midi_get_event_count(buffer);
    for (std::uint32_t i = 0; i < count; ++i) {
        jack_midi_event_t event{};
        MIDIMessage message{};
        if (jack_midi_event_get(&event, buffer, i) != 0 || event.size < message.size()) continue;
        std::copy_n(event.buffer, message.size(), message.begin());
        relay_.put(message);
    }
    if (count > 0) relay_.wake();
}

}  // namespace orbinex
