#include "editor_bridge/ardour/headless_ardour.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "editor_bridge/midi_surface_names.h"

namespace orbinex::test {

namespace {

sockaddr_in localAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

double number(const OscMessage::Argument& argument) {
    return std::visit([](auto value) { return static_cast<double>(value); }, argument);
}

}  // namespace

HeadlessArdour::HeadlessArdour() : socket_(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    const auto address = localAddress(0);
    if (::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        throw std::runtime_error("no socket");
    const std::string client = std::string(MIDISurfaceNames::client) + ":";
    process_ = ChildProcess({ORBINEX_HEADLESS_ARDOUR, folder_.path(), client + MIDISurfaceNames::source,
                             client + MIDISurfaceNames::destination},
                            {.output = STDOUT_FILENO, .errors = STDERR_FILENO});
}

HeadlessArdour::~HeadlessArdour() {
    process_.endsBy(SIGTERM, std::chrono::seconds(5));
    ::close(socket_);
}

bool HeadlessArdour::isAlive() {
    return process_.isRunning() && log().find("JACK HALTED") == std::string::npos;
}

void HeadlessArdour::follow() {
    sockaddr_in ours{};
    socklen_t size = sizeof(ours);
    ::getsockname(socket_, reinterpret_cast<sockaddr*>(&ours), &size);
    constexpr std::int32_t onePage = 0;
    constexpr std::int32_t audioTracks = 1;
    // Buttons, faders, the master's too.
    constexpr std::int32_t told = 1 | 2 | 16;
    constexpr std::int32_t inDecibels = 0;
    send(
        {"/set_surface", {onePage, audioTracks, told, inDecibels, 0, 0, std::int32_t{ntohs(ours.sin_port)}}});
}

std::optional<double> HeadlessArdour::told(const std::string& address, int track) {
    hear();
    const auto found = told_.find({address, track});
    if (found == told_.end()) return std::nullopt;
    return found->second;
}

std::optional<double> HeadlessArdour::fader(int track) {
    return told(track == 0 ? "/master/gain" : "/strip/gain", track);
}

void HeadlessArdour::moveFader(int track, double dB) {
    const auto level = static_cast<float>(dB);
    if (track == 0) {
        send({"/master/gain", {level}});
    } else {
        send({"/strip/gain", {std::int32_t{track}, level}});
    }
}

void HeadlessArdour::send(const OscMessage& message) const {
    const auto port = oscPort();
    if (!port) return;
    const auto address = localAddress(*port);
    const auto bytes = message.encode();
    ::sendto(socket_, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&address),
             sizeof(address));
}

void HeadlessArdour::hear() {
    std::array<std::uint8_t, 65'536> bytes{};
    while (true) {
        const auto size = ::recv(socket_, bytes.data(), bytes.size(), 0);
        if (size < 0) return;
        const auto message = OscMessage::decode(ByteView(bytes).first(static_cast<std::size_t>(size)));
        if (!message) continue;
        const auto& arguments = message->arguments;
        if (arguments.size() == 1) told_[{message->address, 0}] = number(arguments[0]);
        if (arguments.size() == 2)
            told_[{message->address, static_cast<int>(number(arguments[0]))}] = number(arguments[1]);
    }
}

/// It takes the first free port of several and says nowhere which, so the kernel is asked.
std::optional<std::uint16_t> HeadlessArdour::oscPort() const {
    std::set<std::string> sockets;
    std::error_code error;
    for (const auto& entry :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process_.pid()) + "/fd", error)) {
        const auto target = std::filesystem::read_symlink(entry.path(), error).string();
        constexpr std::string_view prefix = "socket:[";
        if (target.starts_with(prefix))
            sockets.insert(target.substr(prefix.size(), target.size() - prefix.size() - 1));
    }
    std::ifstream table("/proc/net/udp");
    std::string line;
    std::getline(table, line);
    while (std::getline(table, line)) {
        std::istringstream words(line);
        std::string slot, local, remote, state, queues, timer, retransmitted, user, timeout, inode;
        words >> slot >> local >> remote >> state >> queues >> timer >> retransmitted >> user >> timeout >>
            inode;
        if (sockets.contains(inode))
            return static_cast<std::uint16_t>(std::stoul(local.substr(local.find(':') + 1), nullptr, 16));
    }
    return std::nullopt;
}

}  // namespace orbinex::test
