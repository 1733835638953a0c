#include "app/terminal_console.h"

#include <algorithm>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"

namespace orbinex {

namespace {

std::string signal(const NearbyDevice& device) {
    return std::to_string(device.rssi) + " dBm";
}

}  // namespace

struct TerminalConsole::Command {
    const char* name;
    const char* argument;  ///< empty when it has none
    const char* purpose;
    void (*run)(TerminalConsole&, const std::string& argument);
};

const std::vector<TerminalConsole::Command>& TerminalConsole::commands() {
    using Console = TerminalConsole;
    using Text = const std::string&;
    static const std::vector<Command> all{
        {"help", "", "this list", [](Console& c, Text) { c.help(); }},
        {"list", "", "the iPhones that are trusted or nearby", [](Console& c, Text) { c.list(); }},
        {"connect", "NUMBER|NAME", "connects one of them; a new one is paired and trusted",
         [](Console& c, Text wanted) { c.connect(wanted); }},
        {"disconnect", "", "ends the connection; it is not made again by itself",
         [](Console& c, Text) { c.disconnect(); }},
        {"cancel", "", "gives up connecting", [](Console& c, Text) { c.cancel(); }},
        {"forget", "NUMBER|NAME", "trusts it no longer", [](Console& c, Text wanted) { c.forget(wanted); }},
        {"rescan", "", "searches anew", [](Console& c, Text) { c.app_.centralManager.rescan(); }},
        {"auto", "on|off", "whether trusted iPhones are connected by themselves",
         [](Console& c, Text wanted) { c.setAuto(wanted); }},
        {"status", "", "how things are", [](Console& c, Text) { c.status(); }},
        {"yes", "", "to the question about pairing", [](Console& c, Text) { c.answer(true); }},
        {"no", "", "the same", [](Console& c, Text) { c.answer(false); }},
        {"quit", "", "ends the program", [](Console& c, Text) { c.quit_(); }},
    };
    return all;
}

TerminalConsole::TerminalConsole(AppCoordinator& app, TerminalPrompt& prompt, Print print,
                                 std::function<void()> quit)
    : app_(app), prompt_(prompt), print_(std::move(print)), quit_(std::move(quit)) {}

void TerminalConsole::execute(std::string_view line) {
    const auto trimmed = [](std::string_view text) {
        const auto first = text.find_first_not_of(" \t");
        if (first == std::string_view::npos) return std::string_view();
        return text.substr(first, text.find_last_not_of(" \t") - first + 1);
    };
    const auto text = trimmed(line);
    if (text.empty()) return;
    const auto end = std::min(text.find_first_of(" \t"), text.size());
    const auto name = text.substr(0, end);
    const std::string argument(trimmed(text.substr(end)));
    const auto command =
        std::ranges::find_if(commands(), [&](const Command& known) { return name == known.name; });
    if (command == commands().end()) return print_("There is no such command; try help.");
    const bool takesArgument = *command->argument != '\0';
    if (takesArgument == argument.empty()) {
        const std::string usage = takesArgument ? std::string(" ") + command->argument : std::string();
        return print_(std::string("Usage: ") + command->name + usage);
    }
    command->run(*this, argument);
}

void TerminalConsole::help() {
    for (const auto& command : commands()) {
        std::string line = std::string(command.name) + " " + command.argument;
        line.resize(std::max<std::size_t>(line.size() + 1, 22), ' ');
        print_(line + command.purpose);
    }
}

TerminalConsole::Entry TerminalConsole::trustedEntry(const TrustedDevice& device) const {
    const auto& link = app_.centralManager;
    const auto& nearby = *link.nearbyDevices;
    const auto heard = std::ranges::find(nearby, device.id, &NearbyDevice::trustedDeviceID);
    std::string state = "trusted, not nearby";
    if (link.isActive(device)) {
        state = *link.phase == LinkPhase::connected ? "trusted, connected" : "trusted, connecting";
    } else if (heard != nearby.end()) {
        state = "trusted, " + signal(*heard);
    }
    return {device.id, {}, device.name, state};
}

std::vector<TerminalConsole::Entry> TerminalConsole::entries() const {
    std::vector<Entry> result;
    for (const auto& device : *app_.trustStore.devices) result.push_back(trustedEntry(device));
    for (const auto& device : app_.centralManager.untrustedNearbyDevices()) {
        result.push_back({std::nullopt, device.id, device.name, "new, " + signal(device)});
    }
    return result;
}

void TerminalConsole::list() {
    listed_ = entries();
    if (listed_.empty()) print_("No iPhone is trusted or nearby.");
    for (std::size_t i = 0; i < listed_.size(); ++i) {
        print_(std::to_string(i + 1) + ". " + listed_[i].name + " (" + listed_[i].state + ")");
    }
}

/// By name among those that are there now, by number among those that were listed; null, and a line that
/// says why, when it is not clear which is meant.
const TerminalConsole::Entry* TerminalConsole::find(const std::string& wanted) {
    if (listed_.empty()) listed_ = entries();
    const auto number = parseInteger(wanted);
    if (number && *number >= 1 && *number <= static_cast<std::int64_t>(listed_.size())) {
        return &listed_[static_cast<std::size_t>(*number - 1)];
    }
    listed_ = entries();
    const auto isMeant = [&](const Entry& entry) { return entry.name == wanted; };
    const auto count = std::ranges::count_if(listed_, isMeant);
    if (count == 1) return &*std::ranges::find_if(listed_, isMeant);
    print_(count == 0 ? "No iPhone of that name or number is trusted or nearby."
                      : "Several are called so; use the number that list shows.");
    return nullptr;
}

/// Also of one that has been trusted since it was listed.
std::optional<TrustedDevice> TerminalConsole::trustedDevice(const Entry& entry) const {
    if (entry.trusted) return app_.trustStore.deviceWithID(*entry.trusted);
    return app_.trustStore.deviceForPeripheral(entry.nearby);
}

void TerminalConsole::connect(const std::string& wanted) {
    const auto* const entry = find(wanted);
    if (!entry) return;
    if (const auto device = trustedDevice(*entry)) {
        app_.centralManager.connectTrustedDevice(*device);
        // Kept in mind, but nothing happens now.
        if (*app_.centralManager.bluetoothState != BluetoothState::poweredOn) status();
        return;
    }
    if (entry->trusted || !findNearby(*app_.centralManager.nearbyDevices, entry->nearby)) {
        return print_("It is not there any more.");
    }
    app_.centralManager.connectNearbyDevice(entry->nearby);
}

void TerminalConsole::disconnect() {
    if (!app_.centralManager.session()) return print_("Nothing is connected.");
    app_.centralManager.disconnect();
}

void TerminalConsole::cancel() {
    const auto phase = *app_.centralManager.phase;
    if (phase != LinkPhase::connecting && phase != LinkPhase::securing)
        return print_("Nothing is connecting.");
    app_.centralManager.cancelConnectionAttempt();
}

void TerminalConsole::forget(const std::string& wanted) {
    const auto* const entry = find(wanted);
    if (!entry) return;
    const auto device = trustedDevice(*entry);
    if (!device) return print_("It is not trusted.");
    app_.centralManager.forgetDevice(*device);
    print_("Forgotten.");
}

void TerminalConsole::setAuto(const std::string& wanted) {
    if (wanted != "on" && wanted != "off") return print_("Usage: auto on|off");
    app_.preferences.setAutoConnect(wanted == "on");
}

void TerminalConsole::status() {
    print_(*app_.centralManager.statusMessage);
}

void TerminalConsole::answer(bool isAccepted) {
    if (!prompt_.answer(isAccepted)) print_("Nothing is asked.");
}

}  // namespace orbinex
