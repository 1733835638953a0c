#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include <jack/jack.h>

#include "base/bytes.h"

namespace orbinex {

/// A client of a JACK server with one port to hear and one to play. It knows nothing of the program's own
/// adapter, so that each is a check of the other.
class Workstation {
  public:
    struct Heard {
        /// CLOCK_MONOTONIC when the server's period began in which it came, in nanoseconds.
        std::int64_t time = 0;
        Bytes bytes;
    };

    /// With `isEcho` what is heard is played back in the same period. Throws std::runtime_error without a
    /// server; none is started.
    Workstation(const std::string& name, bool isEcho);
    Workstation(const Workstation&) = delete;
    Workstation& operator=(const Workstation&) = delete;
    ~Workstation();

    /// Connects our ports to another client's, each found by the port's own name, whoever's it is, or by the
    /// client's and the port's ("client:port"). True when both are connected, whether since now or before.
    bool connect(const std::string& source, const std::string& destination);
    /// Plays bytes as one event, after all that was played before.
    void play(Bytes bytes);
    /// True when nothing that was played is still to go out.
    [[nodiscard]] bool isSilent() const;
    /// All that was heard since the last call.
    [[nodiscard]] std::vector<Heard> takeHeard();
    [[nodiscard]] bool isLost() const;

    /// Readable when something was heard or the server has gone; takeHeard() makes it quiet again.
    [[nodiscard]] int descriptor() const { return event_; }

  private:
    int process(jack_nframes_t frames);
    void hear(void* buffer);
    void playAll(void* buffer);
    void wake() const;

    const bool isEcho_;
    int event_ = -1;
    jack_client_t* client_ = nullptr;
    jack_port_t* input_ = nullptr;
    jack_port_t* output_ = nullptr;

    mutable std::mutex mutex_;
    std::vector<Heard> heard_;
    std::deque<Bytes> toPlay_;
    bool isLost_ = false;
};

}  // namespace orbinex
