#include "editor_bridge/midi/midi_relay.h"

namespace orbinex {

MIDIRelay::MIDIRelay(MIDIListener& listener) : listener_(listener) {
    ::sem_init(&awake_, 0, 0);
    thread_ = std::thread([this] { run(); });
}

MIDIRelay::~MIDIRelay() {
    isEnding_ = true;
    wake();
    thread_.join();
    ::sem_destroy(&awake_);
}

void MIDIRelay::run() {
    bool isLossTold = false;
    while (true) {
        // A signal may interrupt it, which does no harm.
        ::sem_wait(&awake_);
        // Before the messages are taken, so that none that came sooner is left.
        const bool isEnding = isEnding_;
        const bool isLost = isLost_;
        tellMessages();
        if (isLost && !isLossTold) {
            isLossTold = true;
            listener_.lost();
        }
        if (isEnding) return;
    }
}

void MIDIRelay::tellMessages() {
    while (const auto* const message = messages_.front()) {
        listener_.received(*message);
        messages_.pop();
    }
}

}  // namespace orbinex
