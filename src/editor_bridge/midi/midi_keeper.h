#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "editor_bridge/midi/midi_connection.h"

namespace orbinex {

/// Has a connection whenever there is a MIDI system to have one with. Its run() is a thread's whole work and
/// the only place that waits for such a system.
class MIDIKeeper final : public MIDIListener {
  public:
    struct Plan {
        /// In the order of preference.
        std::vector<MIDISystem> systems;
        /// Between two attempts to find one of them.
        std::chrono::milliseconds retryDelay{};
    };
    /// Who is told, on the keeper's thread or that of a connection.
    struct Told {
        /// A connection has come or gone.
        std::function<void()> changed;
        std::function<void(const MIDIMessage&)> message;
    };

    MIDIKeeper(Plan plan, Told told) : plan_(std::move(plan)), told_(std::move(told)) {}
    ~MIDIKeeper() = default;

    /// Returns after end(), when the connection is closed.
    void run();
    /// Any thread. Nobody is told anything any more once it has returned, whatever the systems still do.
    void end();

    /// Any thread.
    [[nodiscard]] bool isConnected() const;
    /// Any thread; never waits for a MIDI system.
    void send(const MIDIMessage& message);

    void received(const MIDIMessage& message) override;
    void lost() override;

  private:
    using Connection = std::unique_ptr<MIDIConnection>;
    Connection openFirst();
    void announce();

    const Plan plan_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    Connection connection_;
    bool isLost_ = false;
    bool isEnding_ = false;

    /// Held while somebody is told, so that end() can wait for that.
    std::mutex telling_;
    Told told_;
};

}  // namespace orbinex
