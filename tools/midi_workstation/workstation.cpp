#include "midi_workstation/workstation.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <jack/midiport.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace orbinex {

namespace {

std::int64_t monotonicNanoseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

/// The full name of a port that somebody has.
std::optional<std::string> findPort(jack_client_t* client, const std::string& name, unsigned long flags) {
    const char** ports = jack_get_ports(client, nullptr, JACK_DEFAULT_MIDI_TYPE, flags);
    if (!ports) return std::nullopt;
    std::optional<std::string> found;
    for (const char** port = ports; *port && !found; ++port) {
        const std::string_view full = *port;
        if (full == name || full.substr(full.find(':') + 1) == name) found = full;
    }
    jack_free(static_cast<void*>(ports));
    return found;
}

}  // namespace

Workstation::Workstation(const std::string& name, bool isEcho)
    : isEcho_(isEcho), event_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    jack_set_error_function([](const char*) {});
    jack_set_info_function([](const char*) {});
    client_ = jack_client_open(name.c_str(), JackNoStartServer, nullptr);
    if (!client_) throw std::runtime_error("no JACK server");
    jack_on_shutdown(
        client_,
        [](void* self) {
            auto& workstation = *static_cast<Workstation*>(self);
            {
                const std::scoped_lock lock(workstation.mutex_);
                workstation.isLost_ = true;
            }
            workstation.wake();
        },
        this);
    jack_set_process_callback(
        client_,
        [](jack_nframes_t frames, void* self) { return static_cast<Workstation*>(self)->process(frames); },
        this);
    input_ = jack_port_register(client_, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
    output_ = jack_port_register(client_, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    if (!input_ || !output_ || jack_activate(client_) != 0) {
        jack_client_close(client_);
        throw std::runtime_error("the JACK server takes no more clients");
    }
}

Workstation::~Workstation() {
    jack_client_close(client_);
    ::close(event_);
}

bool Workstation::connect(const std::string& source, const std::string& destination) {
    const auto from = findPort(client_, source, JackPortIsOutput);
    const auto to = findPort(client_, destination, JackPortIsInput);
    if (!from || !to) return false;
    // What is connected already is an error of its own kind; the server tells of a connection only when its
    // period is over.
    const auto isMade = [this](const char* output, const char* input) {
        const int result = jack_connect(client_, output, input);
        return result == 0 || result == EEXIST;
    };
    const bool hears =
        jack_port_connected_to(input_, from->c_str()) != 0 || isMade(from->c_str(), jack_port_name(input_));
    const bool plays =
        jack_port_connected_to(output_, to->c_str()) != 0 || isMade(jack_port_name(output_), to->c_str());
    return hears && plays;
}

void Workstation::play(Bytes bytes) {
    const std::scoped_lock lock(mutex_);
    toPlay_.push_back(std::move(bytes));
}

bool Workstation::isSilent() const {
    const std::scoped_lock lock(mutex_);
    return toPlay_.empty();
}

std::vector<Workstation::Heard> Workstation::takeHeard() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto read = ::read(event_, &count, sizeof(count));
    const std::scoped_lock lock(mutex_);
    return std::exchange(heard_, {});
}

bool Workstation::isLost() const {
    const std::scoped_lock lock(mutex_);
    return isLost_;
}

int Workstation::process(jack_nframes_t frames) {
    void* const output = jack_port_get_buffer(output_, frames);
    jack_midi_clear_buffer(output);
    const std::scoped_lock lock(mutex_);
    hear(jack_port_get_buffer(input_, frames));
    playAll(output);
    return 0;
}

void Workstation::hear(void* buffer) {
    const auto time = monotonicNanoseconds();
    const std::uint32_t count = jack_midi_get_event_count(buffer);
    for (std::uint32_t i = 0; i < count; ++i) {
        jack_midi_event_t event{};
        if (jack_midi_event_get(&event, buffer, i) != 0) continue;
        heard_.push_back({time, Bytes(event.buffer, event.buffer + event.size)});
        if (isEcho_) toPlay_.push_back(heard_.back().bytes);
    }
    if (count > 0) wake();
}

void Workstation::playAll(void* buffer) {
    for (; !toPlay_.empty(); toPlay_.pop_front()) {
        const auto& bytes = toPlay_.front();
        auto* const room = jack_midi_event_reserve(buffer, 0, bytes.size());
        if (!room) return;
        std::ranges::copy(bytes, room);
    }
}

void Workstation::wake() const {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(event_, &one, sizeof(one));
}

}  // namespace orbinex
