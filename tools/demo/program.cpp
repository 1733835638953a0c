#include "program.h"

#include "protocol/gatt.h"

namespace orbinex::demo {

namespace {

/// Advertises as "OXA1B2C3:Studio iPhone".
const DeviceInfo phoneInfo{OrbinexProtocol::protocolVersion,
                           UUID::literal("A1B2C3D4-0000-4000-8000-00000000E2E0"), "Studio iPhone"};

}  // namespace

std::unique_ptr<X11Connection> Program::connect(const std::string& display) {
    auto connection = X11Connection::open(display);
    if (!connection) throw Ended{"the display " + display + " cannot be used for input"};
    return connection;
}

Program::Program(EventLoop& loop, Report& report, const LinuxEditorBridge::Places& places)
    : phone_(radio_.addPhone(UUID::random(), phoneInfo)),
      connection_(connect(places.display)),
      displayEvents_(connection_->fd(),
                     [this, &loop] {
                         connection_->processEvents();
                         if (!connection_->isAlive()) loop.end({"the display has gone"});
                     }),
      editors_(queue_, places),
      coordinator_(preferences_, {queue_,
                                  defaults_,
                                  radio_,
                                  wake_,
                                  poster_,
                                  layouts_,
                                  editors_.daemon(),
                                  [] { return std::string(computerName); },
                                  {inputPermission_, shell_.loginItem, urls_, presence_.activation()}}),
      face_({queue_, defaults_, coordinator_, relocation_, pairing_, urls_, presence_,
             [&loop] { loop.end({"Orbinex was quit"}); }}),
      delegate_(preferences_, relocation_, [this] { face_.openMainWindow(); }) {
    bundle_.location = std::nullopt;
    delegate_.willFinishLaunching();
    delegate_.didFinishLaunching(false);
    phone_.setAdvertising(false);
    report.says(*link().statusMessage);
    statusLines_ = link().statusMessage.onDidChange([&](const std::string& line) { report.says(line); });
    alerts_ = link().alert.onDidChange([&](const std::optional<BLEAlert>& alert) {
        if (alert) report.says(alert->title + ": " + alert->message);
    });
}

}  // namespace orbinex::demo
