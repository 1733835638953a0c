#pragma once

#include <vector>

#include "editor_bridge/midi_endpoints.h"

namespace orbinex {

/// A MIDI system that is there while it is said to be. What is played is kept, and what a workstation would
/// say is said by a call, on the caller's thread.
class SimulatedMIDIEndpoints final : public MIDIEndpoints {
  public:
    [[nodiscard]] bool isSourceOnline() const override { return isStarted_ && hasSystem_; }
    void send(const MIDIMessage& message) override {
        if (isSourceOnline()) sent.push_back(message);
    }
    void start() override { isStarted_ = true; }
    void stop() override { isStarted_ = false; }

    void setSystem(bool isThere) {
        hasSystem_ = isThere;
        if (isStarted_ && onSourceChanged) onSourceChanged();
    }
    void inject(const MIDIMessage& message) const {
        if (isSourceOnline() && onMessage) onMessage(message);
    }

    std::vector<MIDIMessage> sent;

  private:
    bool isStarted_ = false;
    bool hasSystem_ = true;
};

}  // namespace orbinex
