#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/main_queue.h"
#include "editor_bridge/linux/sink_volume.h"

struct pa_context;
struct pa_threaded_mainloop;
struct pa_operation;

namespace orbinex {

/// A connection to the sound server (PulseAudio, or PipeWire in its place) and the default sink there. The
/// calls are for the main thread and do not wait for the server, which a thread of the library talks to;
/// everything is told on the main queue.
class PulseServer {
  public:
    struct Handlers {
        /// How loud the default sink plays, after each query() and each change; nothing when there is none.
        std::function<void(const std::optional<SinkVolume>&)> reported;
        /// The server has carried out, or refused, what set() asked for.
        std::function<void()> settled;
        /// There is no connection (any more).
        std::function<void()> lost;
    };

    /// An empty address stands for the session's server. The handlers may be called until the queue has
    /// run what was posted before the end of this object, and never before connect().
    PulseServer(std::string address, MainQueue& queue, Handlers handlers);
    PulseServer(const PulseServer&) = delete;
    PulseServer& operator=(const PulseServer&) = delete;
    ~PulseServer();

    /// Begins a connection in place of any that there was; no server is started for it. It ends in a report
    /// or a loss.
    void connect();
    /// Nothing happens while there is no connection.
    void query();
    void set(const SinkVolume& volume);

  private:
    class Lock;
    /// On the library's thread, which holds the lock.
    void noteState();
    void noteSink(const SinkVolume* volume, bool isEnd);
    void noteEvent(unsigned event, std::uint32_t index);
    void queryLocked();
    void lose();
    void dropContext();
    template <class... Arguments>
    void tell(const std::function<void(Arguments...)>& handler, const auto&... arguments);

    const std::string address_;
    MainQueue& queue_;
    const Handlers handlers_;
    pa_threaded_mainloop* loop_;

    // Under the lock from here on.
    pa_context* context_ = nullptr;
    /// A question is with the server; ask once more when it is answered, as something has changed since.
    bool isAsking_ = false;
    bool isAskingAgain_ = false;
    std::optional<SinkVolume> answer_;
};

}  // namespace orbinex
