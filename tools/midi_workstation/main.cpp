// A workstation's side of a control surface, on a JACK server, for the tests, the demo and the benchmarks.

#include <array>
#include <cstddef>
#include <exception>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <poll.h>
#include <unistd.h>

#include "base/line_reader.h"
#include "editor_bridge/midi_surface_names.h"
#include "midi_workstation/hex_bytes.h"
#include "midi_workstation/workstation.h"

namespace {

using namespace orbinex;

constexpr const char* help = R"(Usage: orbinex_midi_workstation [OPTION...]
Connects to two MIDI ports of a JACK server, as soon as they are there and whenever they come back. Prints every
message that it hears, one a line, as hexadecimal bytes ("E0 6A 63"), and plays every line of that form from its
standard input, as one event with just these bytes. Ends when its input has ended and all is played, or with status 1
when the server goes.

  --name NAME   what the client is called ("Workstation")
  --from PORT   the port to hear, by its own name or as client:port ("Orbinex Studio Surface")
  --to PORT     the port to play to ("Orbinex Studio Surface Feedback")
  --echo        plays back what it hears, in the same period of the server, as motor faders do
  --times       puts before each message when it came: nanoseconds of the monotonic clock
  --help        prints this

It also prints "connected" and "disconnected". JACK_DEFAULT_SERVER names the server; none is started.
)";

struct Options {
    std::string name = "Workstation";
    std::string from = MIDISurfaceNames::source;
    std::string to = MIDISurfaceNames::destination;
    bool isEcho = false;
    bool hasTimes = false;
};

/// Nothing when they make no sense.
std::optional<Options> parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        std::string* text = nullptr;
        if (option == "--echo") {
            options.isEcho = true;
        } else if (option == "--times") {
            options.hasTimes = true;
        } else if (option == "--name") {
            text = &options.name;
        } else if (option == "--from") {
            text = &options.from;
        } else if (option == "--to") {
            text = &options.to;
        } else {
            return std::nullopt;
        }
        if (!text) continue;
        if (++i == argc) return std::nullopt;
        *text = argv[i];
    }
    return options;
}

/// The conversation between the standard streams and the server.
class Conversation {
  public:
    explicit Conversation(const Options& options)
        : options_(options), workstation_(options.name, options.isEcho) {}

    /// The exit status.
    int run() {
        while (isReading_ || !workstation_.isSilent()) {
            follow();
            constexpr int betweenLooks = 20;
            pollfd watched[] = {{workstation_.descriptor(), POLLIN, 0},
                                {isReading_ ? STDIN_FILENO : -1, POLLIN, 0}};
            ::poll(watched, std::size(watched), betweenLooks);
            if (watched[0].revents != 0) print();
            if (workstation_.isLost()) return 1;
            if (watched[1].revents != 0) read();
        }
        return 0;
    }

  private:
    void follow() {
        const bool isConnected = workstation_.connect(options_.from, options_.to);
        if (std::exchange(isConnected_, isConnected) == isConnected) return;
        std::cout << (isConnected ? "connected" : "disconnected") << std::endl;
    }
    void print() {
        for (const auto& heard : workstation_.takeHeard()) {
            if (options_.hasTimes) std::cout << heard.time << ' ';
            std::cout << hexText(heard.bytes) << '\n';
        }
        std::cout.flush();
    }
    void read() {
        std::array<char, 65'536> piece{};
        const auto size = ::read(STDIN_FILENO, piece.data(), piece.size());
        isReading_ = size > 0;
        if (!isReading_) return;
        for (const auto& line : lines_.take({piece.data(), static_cast<std::size_t>(size)})) {
            if (auto bytes = bytesFromHex(line)) {
                workstation_.play(std::move(*bytes));
            } else {
                std::cerr << "not bytes: " << line << '\n';
            }
        }
    }

    const Options options_;
    Workstation workstation_;
    LineReader lines_;
    bool isReading_ = true;
    bool isConnected_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    const auto options = parse(argc, argv);
    if (!options) {
        const bool isAsked = argc == 2 && std::string_view(argv[1]) == "--help";
        (isAsked ? std::cout : std::cerr) << help;
        return isAsked ? 0 : 2;
    }
    try {
        return Conversation(*options).run();
    } catch (const std::exception& failure) {
        std::cerr << "orbinex_midi_workstation: " << failure.what() << '\n';
        return 1;
    }
}
