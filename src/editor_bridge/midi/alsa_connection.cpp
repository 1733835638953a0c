#include "editor_bridge/midi/alsa_connection.h"

#include <algorithm>

#include <fcntl.h>
#include <unistd.h>

#include "editor_bridge/midi_surface_names.h"

namespace orbinex {

namespace {

/// Whether the kernel has a sequencer and lets us use it. The library prints when it has not.
bool hasSequencer() {
    const int device = ::open("/dev/snd/seq", O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (device < 0) return false;
    ::close(device);
    return true;
}

}  // namespace

std::unique_ptr<MIDIConnection> AlsaConnection::open(MIDIListener& listener) {
    if (!hasSequencer()) return nullptr;
    try {
        return std::unique_ptr<MIDIConnection>(new AlsaConnection(listener));
    } catch (const RtMidiError&) {
        return nullptr;
    }
}

AlsaConnection::AlsaConnection(MIDIListener& listener)
    : listener_(listener), source_(RtMidi::LINUX_ALSA, MIDISurfaceNames::client) {
    source_.openVirtualPort(MIDISurfaceNames::source);
    try {
        openDestination();
    } catch (const RtMidiError&) {
        destination_.reset();
    }
}

void AlsaConnection::openDestination() {
    destination_ = std::make_unique<RtMidiIn>(RtMidi::LINUX_ALSA, MIDISurfaceNames::client);
    // Long messages, clocks and active sensing are not even put together.
    destination_->ignoreTypes(true, true, true);
    destination_->setCallback(&AlsaConnection::deliver, this);
    destination_->openVirtualPort(MIDISurfaceNames::destination);
}

void AlsaConnection::send(const MIDIMessage& message) {
    source_.sendMessage(message.data(), message.size());
}

void AlsaConnection::deliver(double /*seconds*/, std::vector<unsigned char>* message, void* self) {
    MIDIMessage first{};
    if (message->size() < first.size()) return;
    std::copy_n(message->begin(), first.size(), first.begin());
    static_cast<AlsaConnection*>(self)->listener_.received(first);
}

}  // namespace orbinex
