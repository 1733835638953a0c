#include "editor_bridge/midi/system_midi_endpoints.h"

#include <utility>

#include "editor_bridge/midi/alsa_connection.h"
#include "editor_bridge/midi/jack_connection.h"

namespace orbinex {

MIDIKeeper::Plan SystemMIDIEndpoints::usualPlan() {
    return {.systems = {AlsaConnection::open, JackConnection::open}, .retryDelay = retryDelay};
}

SystemMIDIEndpoints::SystemMIDIEndpoints(MainQueue& queue, MIDIKeeper::Plan plan)
    : queue_(queue), plan_(std::move(plan)) {}

SystemMIDIEndpoints::~SystemMIDIEndpoints() {
    stop();
}

void SystemMIDIEndpoints::send(const MIDIMessage& message) {
    if (keeper_) keeper_->send(message);
}

void SystemMIDIEndpoints::start() {
    if (keeper_) return;
    const MainQueue::Job noteChange = lifetime_.guard([this] { this->noteChange(); });
    keeper_ = std::make_shared<MIDIKeeper>(
        plan_, MIDIKeeper::Told{.changed = [&queue = queue_, noteChange] { queue.post(noteChange); },
                                .message = onMessage});
    std::promise<void> end;
    ended_ = end.get_future();
    thread_ = std::thread([keeper = keeper_, end = std::move(end)]() mutable {
        keeper->run();
        end.set_value();
    });
}

void SystemMIDIEndpoints::stop() {
    if (!keeper_) return;
    keeper_->end();
    if (ended_.wait_for(closingTime) == std::future_status::ready) {
        thread_.join();
    } else {
        thread_.detach();
    }
    keeper_.reset();
    isOnline_ = false;
}

void SystemMIDIEndpoints::noteChange() {
    const bool isOnline = keeper_ && keeper_->isConnected();
    if (std::exchange(isOnline_, isOnline) != isOnline && onSourceChanged) onSourceChanged();
}

}  // namespace orbinex
