#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "editor_bridge/ardour/osc_message.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace orbinex::test {

/// Ardour without its windows, with a session of three tracks and a master. Its control surface "Mackie
/// Control" is connected to our two ports. We look at its faders and move them by OSC, which knows nothing of
/// MIDI.
class HeadlessArdour {
  public:
    static constexpr int tracks = 3;

    /// On the JACK server that JACK_DEFAULT_SERVER names.
    HeadlessArdour();
    HeadlessArdour(const HeadlessArdour&) = delete;
    HeadlessArdour& operator=(const HeadlessArdour&) = delete;
    ~HeadlessArdour();

    /// False once it has ended or has lost the server.
    bool isAlive();
    /// Asks for all faders and to be told when one changes; nobody answers before Ardour has loaded its
    /// session.
    void follow();

    /// What it has told last under an address, of a track or (0) of the master or of no track.
    std::optional<double> told(const std::string& address, int track);
    /// In dB; track 0 is the master.
    std::optional<double> fader(int track);
    void moveFader(int track, double dB);

    /// What it has printed, for a failure's message.
    [[nodiscard]] std::string log() const { return folder_.read("ardour.log"); }

  private:
    void send(const OscMessage& message) const;
    void hear();
    [[nodiscard]] std::optional<std::uint16_t> oscPort() const;

    TemporaryFolder folder_;
    ChildProcess process_;
    int socket_ = -1;
    std::map<std::pair<std::string, int>, double> told_;
};

}  // namespace orbinex::test
