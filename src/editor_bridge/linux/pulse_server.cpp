#include "editor_bridge/linux/pulse_server.h"

#include <utility>

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/operation.h>
#include <pulse/subscribe.h>
#include <pulse/thread-mainloop.h>

namespace orbinex {

namespace {

constexpr const char* defaultSink = "@DEFAULT_SINK@";

/// Nothing here waits for the end of an operation: its callback tells.
void letGo(pa_operation* operation) {
    if (operation) pa_operation_unref(operation);
}

}  // namespace

class PulseServer::Lock {
  public:
    explicit Lock(pa_threaded_mainloop* loop) : loop_(loop) { pa_threaded_mainloop_lock(loop_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { pa_threaded_mainloop_unlock(loop_); }

  private:
    pa_threaded_mainloop* loop_;
};

PulseServer::PulseServer(std::string address, MainQueue& queue, Handlers handlers)
    : address_(std::move(address)),
      queue_(queue),
      handlers_(std::move(handlers)),
      loop_(pa_threaded_mainloop_new()) {
    if (!loop_ || pa_threaded_mainloop_start(loop_) == 0) return;
    pa_threaded_mainloop_free(std::exchange(loop_, nullptr));
}

PulseServer::~PulseServer() {
    if (!loop_) return;
    {
        const Lock lock(loop_);
        dropContext();
    }
    pa_threaded_mainloop_stop(loop_);
    pa_threaded_mainloop_free(loop_);
}

template <class... Arguments>
void PulseServer::tell(const std::function<void(Arguments...)>& handler, const auto&... arguments) {
    queue_.post([handler, arguments...] { handler(arguments...); });
}

void PulseServer::connect() {
    if (!loop_) return tell(handlers_.lost);
    const Lock lock(loop_);
    dropContext();
    context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "Orbinex");
    if (!context_) return lose();
    pa_context_set_state_callback(
        context_, [](pa_context*, void* self) { static_cast<PulseServer*>(self)->noteState(); }, this);
    pa_context_set_subscribe_callback(
        context_,
        [](pa_context*, pa_subscription_event_type_t event, std::uint32_t index, void* self) {
            static_cast<PulseServer*>(self)->noteEvent(event, index);
        },
        this);
    const char* address = address_.empty() ? nullptr : address_.c_str();
    // What fails at once may have told so by the callback too.
    if (pa_context_connect(context_, address, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0 && context_) lose();
}

void PulseServer::dropContext() {
    if (!context_) return;
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_set_subscribe_callback(context_, nullptr, nullptr);
    // Cancels what is under way: no callback comes after this.
    pa_context_disconnect(context_);
    pa_context_unref(std::exchange(context_, nullptr));
    isAsking_ = isAskingAgain_ = false;
    answer_.reset();
}

void PulseServer::lose() {
    dropContext();
    tell(handlers_.lost);
}

void PulseServer::noteState() {
    const auto state = pa_context_get_state(context_);
    if (!PA_CONTEXT_IS_GOOD(state)) return lose();
    if (state != PA_CONTEXT_READY) return;
    constexpr auto wanted =
        static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER);
    letGo(pa_context_subscribe(context_, wanted, nullptr, nullptr));
    queryLocked();
}

void PulseServer::noteEvent(unsigned event, std::uint32_t index) {
    const bool isSinkChange = (event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK) == PA_SUBSCRIPTION_EVENT_SINK &&
                              (event & PA_SUBSCRIPTION_EVENT_TYPE_MASK) == PA_SUBSCRIPTION_EVENT_CHANGE;
    // While a question is out, the sink that it will find may be another.
    if (isSinkChange && !isAsking_ && answer_ && answer_->sink != index) return;
    queryLocked();
}

void PulseServer::query() {
    if (!loop_) return;
    const Lock lock(loop_);
    queryLocked();
}

void PulseServer::queryLocked() {
    if (!context_ || pa_context_get_state(context_) != PA_CONTEXT_READY) return;
    if (std::exchange(isAsking_, true)) {
        isAskingAgain_ = true;
        return;
    }
    answer_.reset();
    const auto note = [](pa_context*, const pa_sink_info* info, int end, void* self) {
        const SinkVolume volume = info ? SinkVolume{info->index, info->volume} : SinkVolume{};
        static_cast<PulseServer*>(self)->noteSink(info ? &volume : nullptr, end != 0);
    };
    letGo(pa_context_get_sink_info_by_name(context_, defaultSink, note, this));
}

void PulseServer::noteSink(const SinkVolume* volume, bool isEnd) {
    if (volume) answer_ = *volume;
    if (!isEnd) return;
    isAsking_ = false;
    tell(handlers_.reported, answer_);
    if (std::exchange(isAskingAgain_, false)) queryLocked();
}

void PulseServer::set(const SinkVolume& volume) {
    if (!loop_) return;
    const Lock lock(loop_);
    if (!context_ || pa_context_get_state(context_) != PA_CONTEXT_READY) return;
    const auto note = [](pa_context*, int, void* self) {
        auto* server = static_cast<PulseServer*>(self);
        server->tell(server->handlers_.settled);
    };
    pa_operation* operation =
        pa_context_set_sink_volume_by_index(context_, volume.sink, &volume.channels, note, this);
    // Refused by the library itself, as for a volume that makes no sense.
    if (!operation) return tell(handlers_.settled);
    letGo(operation);
}

}  // namespace orbinex
