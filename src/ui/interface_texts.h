#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/uuid.h"

/// Every text of the interface that the managers do not have already, each written once. What the link says
/// is in link/link_texts.h, the offer to move the program in app/relocation_alert.h.
namespace orbinex::InterfaceText {

/// A text that stands still, by the name under which the QML files ask for it.
struct Label {
    const char* name;
    const char* text;
};
[[nodiscard]] const std::vector<Label>& labels();

inline constexpr const char* productName = "Orbinex";
inline constexpr const char* openOrbinex = "Open Orbinex…";
inline constexpr const char* quitOrbinex = "Quit Orbinex";

// The link in a word, and what can be done about it.
inline constexpr const char* bluetoothUnavailableWord = "Bluetooth Unavailable";
inline constexpr const char* searchingWord = "Searching";
inline constexpr const char* connectingWord = "Connecting";
inline constexpr const char* securingWord = "Securing";
inline constexpr const char* connectedWord = "Connected";
inline constexpr const char* searchAgain = "Search Again";
inline constexpr const char* cancel = "Cancel";
inline constexpr const char* disconnect = "Disconnect";
inline constexpr const char* openBluetoothSettings = "Open Bluetooth Settings";

// The link in a line.
inline constexpr const char* bluetoothUnavailableLine = "Bluetooth unavailable";
inline constexpr const char* noIPhoneLine = "No iPhone connected";
inline constexpr const char* waitingLine = "Waiting for your iPhone";
inline constexpr const char* securingLine = "Securing connection…";
inline constexpr const char* bluetoothUnavailableTitle = "Bluetooth Is Unavailable";
inline constexpr const char* welcomeTitle = "Let's connect your iPhone";

// An iPhone in a row of a list.
inline constexpr const char* connectingRow = "Connecting…";
inline constexpr const char* securingRow = "Securing…";
inline constexpr const char* nearbyRow = "Nearby";
inline constexpr const char* notNearbyRow = "Not nearby";
[[nodiscard]] std::string lastConnected(const std::string& relativeDate);
[[nodiscard]] std::string moreOptions(const std::string& name);
/// `bars` from 0 to 3.
[[nodiscard]] std::string signal(int bars);

// Bluetooth among the permissions.
inline constexpr const char* bluetooth = "Bluetooth";
inline constexpr const char* bluetoothUnsupported = "Unsupported";
inline constexpr const char* bluetoothNotAllowed = "Not allowed";
inline constexpr const char* bluetoothOff = "Off";
inline constexpr const char* bluetoothStarting = "Starting…";

/// The name of the tray icon for who cannot see it.
[[nodiscard]] std::string trayIcon(const std::string& phaseWord);
/// Either part may be empty; then "1.0" and "1" stand for it.
[[nodiscard]] std::string version(std::string_view release, std::string_view build);

// A desktop without a tray.
inline constexpr const char* noTray =
    "This desktop has no place for tray icons: Orbinex stays in the task bar instead.";
inline constexpr const char* keptInTaskBarTitle = "Orbinex Goes On Running";
inline constexpr const char* keptInTaskBar =
    "This desktop has no place for tray icons. To reach Orbinex, choose it in the task bar or start it "
    "again. "
    "To end it, choose Quit in the menu of its icon, or press Ctrl+Q in its window.";

// Message boxes.
/// The name may be empty.
[[nodiscard]] std::string forgetTitle(const std::string& name);
inline constexpr const char* forgetMessage =
    "This iPhone will no longer connect automatically. To also remove the Bluetooth pairing, open System "
    "Settings → Bluetooth.";
inline constexpr const char* forget = "Forget";
[[nodiscard]] std::string pairTitle(const std::string& name);
/// Without digits there is nothing to compare.
[[nodiscard]] std::string pairMessage(const std::optional<std::string>& digits);
inline constexpr const char* pair = "Pair";
inline constexpr const char* unopenedTitle = "Couldn't Open It";
/// What to do instead; the address is one of system_settings_urls.h or a web page.
[[nodiscard]] std::string unopened(std::string_view url);

}  // namespace orbinex::InterfaceText
