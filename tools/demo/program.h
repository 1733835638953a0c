#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "app/app_coordinator.h"
#include "app/app_delegate.h"
#include "app/app_relocation_manager.h"
#include "app/linux/fd_watch.h"
#include "app/linux/linux_editor_bridge.h"
#include "app/linux/qt_main_queue.h"
#include "app/x11/x11_input_permission.h"
#include "event_loop.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "report.h"
#include "sim/memory_defaults.h"
#include "sim/simulated_bundle.h"
#include "sim/simulated_radio.h"
#include "sim/simulated_shell.h"
#include "ui/interface.h"

namespace orbinex::demo {

/// The program as it is put together for real, with its windows and its tray icon, but for the radio, which
/// is simulated, the settings, which are kept in memory, and what it is to do to the user's session: it is
/// not started at login, opens no web page and moves nowhere. It works on the given display, which is the
/// application object's as well, and with the scripting host and sound server given.
class Program {
  public:
    /// Throws Ended when the display cannot be used. When the display goes away, or the person quits the
    /// program, the loop is told to end.
    Program(EventLoop& loop, Report& report, const LinuxEditorBridge::Places& places);

    /// The phone, switched off at first.
    SimulatedPhone& phone() { return phone_; }
    AppWatcherDaemon& bridge() { return editors_.daemon(); }
    CentralBLEManager& link() { return coordinator_.centralManager; }
    Interface& face() { return face_; }
    TrustedDeviceStore& trustStore() { return coordinator_.trustStore; }
    /// True when the program knows a key of the desktop's keyboard for this character.
    [[nodiscard]] bool hasKeyFor(std::string_view character) const {
        return coordinator_.inputManager.layoutMapper().table().find(character).has_value();
    }

    static constexpr const char* computerName = "Demo Desktop";

  private:
    static std::unique_ptr<X11Connection> connect(const std::string& display);

    QtMainQueue queue_;
    MemoryDefaults defaults_;
    SimulatedRadio radio_{queue_};
    SimulatedPhone& phone_;
    WakeNotifier wake_;
    std::unique_ptr<X11Connection> connection_;
    X11EventPoster poster_{*connection_, queue_};
    X11KeyboardLayoutSource layouts_{*connection_, queue_};
    FdWatch displayEvents_;
    LinuxEditorBridge editors_;
    SimulatedShell shell_;
    ReportingUrlOpener urls_{shell_.urls};
    SimulatedBundle bundle_;
    X11InputPermission inputPermission_{*connection_};
    PairingQuestion pairing_;
    DesktopPresence presence_;
    AppPreferences preferences_{defaults_};
    AppCoordinator coordinator_;
    AppRelocationManager relocation_{queue_, defaults_, bundle_};
    Interface face_;
    AppDelegate delegate_;
    Subscription statusLines_;
    Subscription alerts_;
};

}  // namespace orbinex::demo
