#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "editor_bridge/midi/midi_keeper.h"
#include "editor_bridge/midi_endpoints.h"

namespace orbinex {

/// The endpoints in the computer's MIDI system: the kernel's sequencer, or else a JACK server. Both may be
/// missing, come, and go; what is there first is kept until it goes.
///
/// The main thread never waits for a MIDI system, but for stop(): that gives it `closingTime` to let go, and
/// leaves one that does not answer to its thread.
class SystemMIDIEndpoints final : public MIDIEndpoints {
  public:
    static constexpr std::chrono::milliseconds retryDelay{5000};
    static constexpr std::chrono::milliseconds closingTime{1000};

    /// The queue must outlive it.
    explicit SystemMIDIEndpoints(MainQueue& queue, MIDIKeeper::Plan plan = usualPlan());
    ~SystemMIDIEndpoints() override;

    [[nodiscard]] bool isSourceOnline() const override { return isOnline_; }
    void send(const MIDIMessage& message) override;
    void start() override;
    void stop() override;

    static MIDIKeeper::Plan usualPlan();

  private:
    void noteChange();

    MainQueue& queue_;
    const MIDIKeeper::Plan plan_;
    bool isOnline_ = false;
    std::shared_ptr<MIDIKeeper> keeper_;
    std::thread thread_;
    std::future<void> ended_;
    Lifetime lifetime_;
};

}  // namespace orbinex
