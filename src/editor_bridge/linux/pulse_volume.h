#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "editor_bridge/linux/pulse_server.h"
#include "editor_bridge/linux/sink_volume.h"
#include "editor_bridge/system_volume.h"

namespace orbinex {

/// The volume of the sound server's default sink, whichever that is at the time: its loudest channel. The
/// server may come, go and come back; none is ever started.
///
/// A server tells of changes late, those of others and the echo of one's own. So from a write until
/// `settlingTime` after the server has carried out the last one, what it tells is passed over, and then it is
/// asked anew: what was written never jumps back on its way. At most one write is with the server; of those
/// that come meanwhile only the last is sent.
class PulseVolume final : public SystemVolume {
  public:
    /// Between two attempts to find a server.
    static constexpr std::chrono::milliseconds retryDelay{3000};
    /// PulseAudio echoes within 6 ms; PipeWire's server may confirm a write before its mixer has it.
    static constexpr std::chrono::milliseconds settlingTime{200};

    /// The address as the PULSE_SERVER variable takes it; empty for the session's server. There is no volume
    /// until the server has told it.
    explicit PulseVolume(MainQueue& queue, std::string address = {});

    [[nodiscard]] std::optional<double> read() const override { return position_; }
    /// Keeps the balance between the channels. Not a number is nothing to write.
    void write(double position) override;

  private:
    void noteReport(const std::optional<SinkVolume>& volume);
    void noteSettled();
    void noteLoss();

    MainQueue& queue_;
    std::optional<double> position_;
    SinkBalance balance_;
    bool isWriting_ = false;
    /// To be written when the server is done with the one before.
    std::optional<double> next_;
    Timer settling_;
    Timer retry_;
    Lifetime lifetime_;
    PulseServer server_;
};

}  // namespace orbinex
