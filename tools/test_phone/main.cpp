// Plays the iPhone over the air, for whoever has none.

#include <QCoreApplication>
#include <QDBusConnection>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <unistd.h>

#include "app/linux/fd_watch.h"
#include "app/linux/qt_main_queue.h"
#include "app/linux/unix_signals.h"
#include "base/line_reader.h"
#include "test_phone/options.h"
#include "test_phone/phone.h"

namespace {

using namespace orbinex;
using namespace orbinex::test_phone;

constexpr int usageStatus = 2;

int fail(const std::string& why) {
    std::fprintf(stderr, "orbinex_test_phone: %s\n", why.c_str());
    return EXIT_FAILURE;
}

/// Each line at once, also for a program at the other end of a pipe.
void print(const std::string& line) {
    std::fputs(line.c_str(), stdout);
    if (!line.ends_with('\n')) std::fputc('\n', stdout);
    std::fflush(stdout);
}

/// Hands the lines of standard input on, and its end.
class Terminal {
  public:
    Terminal(MainQueue& queue, Phone& phone)
        : queue_(queue), phone_(phone), input_(std::make_unique<FdWatch>(STDIN_FILENO, [this] { take(); })) {}

  private:
    void take() {
        std::array<char, 4096> buffer{};
        const auto count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count > 0) {
            const std::string_view piece(buffer.data(), static_cast<std::size_t>(count));
            for (const auto& line : lines_.take(piece)) phone_.execute(line);
            return;
        }
        // The end would be there to be read for ever. The watch is what is calling.
        queue_.post([input = std::shared_ptr<FdWatch>(std::move(input_))] {});
        phone_.execute(lines_.unfinished());
        phone_.quit();
    }

    MainQueue& queue_;
    Phone& phone_;
    LineReader lines_;
    std::unique_ptr<FdWatch> input_;
};

int play(const Options& options) {
    const auto bus = QDBusConnection::systemBus();
    if (!bus.isConnected()) return fail("there is no system bus: " + bus.lastError().message().toStdString());

    QtMainQueue queue;
    std::optional<Mistake> failure;
    std::optional<Terminal> terminal;
    // Jobs of its own may be what ends the phone; it goes when they have returned.
    Phone phone(
        queue, bus, options, print, [&] { terminal.emplace(queue, phone); },
        [&](const std::optional<Mistake>& mistake) {
            failure = mistake;
            queue.post([] { QCoreApplication::quit(); });
        });
    const UnixSignals signals([&](int) { phone.quit(); });
    phone.start();
    QCoreApplication::exec();
    return failure ? fail(failure->text) : EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const auto parsed = parseOptions(arguments);
    const auto* options = std::get_if<Options>(&parsed);
    if (!options) {
        fail(std::get_if<Mistake>(&parsed)->text + "; see --help");
        return usageStatus;
    }
    if (options->isHelpWanted) {
        std::fputs(std::string(usage).c_str(), stdout);
        return EXIT_SUCCESS;
    }
    return play(*options);
}
