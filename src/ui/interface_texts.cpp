#include "ui/interface_texts.h"

#include "app/system_settings_urls.h"

namespace orbinex::InterfaceText {

const std::vector<Label>& labels() {
    static const std::vector<Label> all{
        {"orbinex", productName},
        {"wordmark", "ORBINEX"},
        // the panel
        {"connect", "Connect"},
        {"newIPhone", "New iPhone"},
        {"inputNotAllowed", "Input control not allowed"},
        {"allow", "Allow…"},
        {"openOrbinex", openOrbinex},
        {"quitOrbinex", quitOrbinex},
        // the connection
        {"searchAgain", searchAgain},
        {"disconnect", disconnect},
        {"pairingHint", "If a pairing request appears, accept it on both your Mac and iPhone."},
        // the set-up guide
        {"setUp", "Set up in four steps"},
        {"step1Title", "Open Orbinex on iPhone"},
        {"step1Text", "Get it on the App Store. Keep it open and unlocked."},
        {"step2Title", "Choose your iPhone"},
        {"step2Text", "It appears under Nearby iPhones. Click Trust & Connect."},
        {"step3Title", "Accept pairing"},
        {"step3Text", "Confirm the Bluetooth request on both devices — only once."},
        {"step4Title", "Allow input control"},
        {"step4Text", "Lets taps and keys move the pointer and type."},
        // input control
        {"inputTitle", "Allow Orbinex to control this Mac"},
        {"inputText",
         "macOS requires your permission before an app can move the pointer, click, and type. Orbinex only "
         "posts input it receives from your trusted iPhone — it never reads your screen or other apps. "
         "You'll find it under Privacy & Security → Accessibility."},
        {"allowAccess", "Allow Access…"},
        {"openSettings", "Open Settings"},
        // the lists of iPhones
        {"myIPhones", "My iPhones"},
        {"noTrusted",
         "No trusted iPhones yet. Trust an iPhone from the Nearby list to let it connect automatically."},
        {"forgetThis", "Forget This iPhone…"},
        {"nearbyIPhones", "Nearby iPhones"},
        {"searchAgainIcon", "Search again"},
        {"caution",
         "Only trust iPhones you own. A trusted iPhone can control this Mac's pointer and keyboard."},
        {"trustAndConnect", "Trust & Connect"},
        {"turnOnBluetooth", "Turn on Bluetooth to find nearby iPhones."},
        {"noneFound", "No new iPhones found yet."},
        {"noneFoundHelp",
         "Open Orbinex on your iPhone and keep it unlocked. Make sure Bluetooth is on and the iPhone shows "
         "“Ready to connect”."},
        // permissions
        {"permissions", "Permissions"},
        {"inputControl", "Input Control"},
        {"allowed", "Allowed"},
        {"required", "Required"},
        {"bluetooth", bluetooth},
        {"settings", "Settings…"},
        // general settings
        {"general", "General"},
        {"openAtLogin", "Open at Login"},
        {"openAtLoginText", "Start Orbinex when you log in."},
        {"approve", "Approve in Login Items…"},
        {"autoConnect", "Auto-Connect"},
        {"autoConnectText", "Reconnect to trusted iPhones automatically."},
        {"showInDock", "Show in Dock"},
        {"showInMenuBar", "Show in Menu Bar"},
        {"noTray", noTray},
        // the footer
        {"getTheApp", "Get the iPhone App"},
        {"privacyPolicy", "Privacy Policy"},
        {"support", "Support"},
    };
    return all;
}

std::string lastConnected(const std::string& relativeDate) {
    return "Last connected " + relativeDate;
}
std::string moreOptions(const std::string& name) {
    return "More options for " + name;
}
std::string signal(int bars) {
    return "Signal " + std::to_string(bars) + " of 3";
}
std::string trayIcon(const std::string& phaseWord) {
    return "Orbinex — " + phaseWord;
}
std::string version(std::string_view release, std::string_view build) {
    const auto orElse = [](std::string_view text, const char* otherwise) {
        return std::string(text.empty() ? otherwise : text);
    };
    return "Orbinex " + orElse(release, "1.0") + " (" + orElse(build, "1") + ")";
}
std::string forgetTitle(const std::string& name) {
    return name.empty() ? "Forget this iPhone?" : "Forget " + name + "?";
}
std::string pairTitle(const std::string& name) {
    return "Pair with " + name + "?";
}
std::string pairMessage(const std::optional<std::string>& digits) {
    return digits ? "Accept only if your iPhone shows the same number: " + *digits
                  : "Accept only if it is your iPhone. The pairing has to be accepted on the iPhone too.";
}

std::string unopened(std::string_view url) {
    const auto inSettings = [](const char* subject) {
        return "Nothing on this computer opens these settings for Orbinex. Look for “" +
               std::string(subject) + "” in the settings of your desktop.";
    };
    if (url == bluetoothSettingsUrl || url == bluetoothPrivacySettingsUrl) return inSettings(bluetooth);
    if (url == accessibilitySettingsUrl) return inSettings("Accessibility");
    return "No browser was found. The address is " + std::string(url);
}

}  // namespace orbinex::InterfaceText
