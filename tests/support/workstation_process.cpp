#include "support/workstation_process.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace orbinex::test {

WorkstationProcess::WorkstationProcess(std::vector<std::string> arguments) {
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    arguments.insert(arguments.begin(), ORBINEX_MIDI_WORKSTATION);
    process_ =
        ChildProcess(std::move(arguments), {.input = input[0], .output = output[1], .errors = STDERR_FILENO});
    ::close(input[0]);
    ::close(output[1]);
    input_ = input[1];
    output_ = output[0];
    ::fcntl(output_, F_SETFL, O_NONBLOCK);
}

WorkstationProcess::~WorkstationProcess() {
    // One that is killed would keep the server waiting for it.
    ::close(input_);
    ::close(output_);
    process_.endsBy(0, std::chrono::seconds(5));
}

void WorkstationProcess::play(std::string_view lines) const {
    while (!lines.empty()) {
        const auto written = ::write(input_, lines.data(), lines.size());
        if (written < 0) throw std::runtime_error("the workstation does not listen");
        lines.remove_prefix(static_cast<std::size_t>(written));
    }
}

const std::vector<std::string>& WorkstationProcess::lines() {
    std::array<char, 65'536> piece{};
    while (true) {
        const auto size = ::read(output_, piece.data(), piece.size());
        if (size <= 0) return lines_;
        auto more = reader_.take({piece.data(), static_cast<std::size_t>(size)});
        lines_.insert(lines_.end(), std::move_iterator(more.begin()), std::move_iterator(more.end()));
    }
}

}  // namespace orbinex::test
