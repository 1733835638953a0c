// Every text that a person reads stands in the sources once, so that it can only be changed everywhere.

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace orbinex {
namespace {

namespace fs = std::filesystem;

/// The string literals of a source file, adjacent ones joined, without those in comments and includes.
void count(const std::string& source, std::map<std::string, int>& literals) {
    static const std::regex token(R"re(//[^\n]*|#include[^\n]*|"((?:[^"\\\n]|\\.)*)")re");
    std::string joined;
    auto end = source.cbegin();
    bool isOpen = false;
    const auto finish = [&] {
        if (isOpen) ++literals[joined];
        joined.clear();
        isOpen = false;
    };
    for (auto it = std::sregex_iterator(source.begin(), source.end(), token); it != std::sregex_iterator();
         ++it) {
        if (!(*it)[1].matched) continue;
        const bool isAdjacent =
            std::all_of(end, (*it)[0].first, [](unsigned char c) { return std::isspace(c); });
        if (!isAdjacent) finish();
        joined += (*it)[1].str();
        isOpen = true;
        end = (*it)[0].second;
    }
    finish();
}

std::map<std::string, int> literalsOfTheSources() {
    std::map<std::string, int> literals;
    for (const auto& entry : fs::recursive_directory_iterator(ORBINEX_SOURCE_FOLDER)) {
        const auto extension = entry.path().extension();
        // What is said to services there is not for people.
        const auto folder = entry.path().parent_path().filename();
        if (folder == "linux" || folder == "bluez") continue;
        if (extension != ".h" && extension != ".cpp" && extension != ".qml") continue;
        std::ostringstream text;
        text << std::ifstream(entry.path()).rdbuf();
        count(text.str(), literals);
    }
    return literals;
}

/// What is inserted, such as a name, separates one piece from the next.
const char* const texts[] = {
    // the link's status lines
    "Starting Bluetooth…",
    "Bluetooth is restarting…",
    "This Mac doesn't support Bluetooth Low Energy.",
    "Orbinex needs Bluetooth access. Allow it in System Settings → Privacy & Security → Bluetooth.",
    "Bluetooth is turned off. Turn it on in Control Center or System Settings.",
    "Waiting for a trusted iPhone…",
    "Searching for iPhones running Orbinex…",
    "Looking for ",
    "Connecting to ",
    "Securing connection with ",
    "Connected to ",
    "Reconnecting in ",
    "s…",
    "Disconnected from ",
    "Connection cancelled",
    " disconnected",
    " paused Orbinex",
    "Connection to ",
    " lost — reconnecting…",
    " is waiting to be trusted",
    "Secure handshake timed out",
    "Service discovery failed: ",
    "Orbinex isn't active on the iPhone",
    "Characteristic discovery failed: ",
    "Update required",
    "Couldn't read device info: ",
    "Invalid device info",
    "Version mismatch",
    "Subscription failed: ",
    "Pairing not completed",
    // its alerts
    " Isn't Nearby",
    "Open Orbinex on your iPhone, keep it unlocked, and make sure it's within Bluetooth range. It will "
    "connect "
    "automatically.",
    "Couldn't Reach ",
    "Make sure Orbinex is open on your iPhone and the phone is unlocked and nearby, then try again.",
    "Couldn't Connect to ",
    "Please try again.",
    "Connection Timed Out",
    "The secure handshake with ",
    " didn't finish. If a pairing request appeared, accept it on both devices, then try again.",
    "Update Required",
    " is running a different version of Orbinex. Update Orbinex on both your iPhone and Mac to the latest "
    "version.",
    " has an older version of Orbinex. Update Orbinex on your iPhone to continue.",
    " has a newer version of Orbinex. Update Orbinex on this Mac to continue.",
    "Pair ",
    " Again",
    " no longer recognizes this Mac. Open System Settings → Bluetooth on this Mac, remove ",
    " from My Devices, then click Trust & Connect again.",
    "Pairing Not Completed",
    "Orbinex needs a secure Bluetooth pairing with ",
    ". Click Connect and accept the pairing request on both your Mac and iPhone.",
    "iPhone",
    "your iPhone",
    "the iPhone",
    // the offer to move the program
    "Move Orbinex to Applications?",
    R"(Orbinex needs to run from your Applications folder so that macOS Accessibility permissions and Open at Login remain active across restarts.\n\nWould you like to move it to Applications now?)",
    "Move to Applications",
    "Do Not Move",
    "Do not ask again",
    "Action Required: Drag to Applications",
    "Please drag Orbinex into the Applications folder shown in Finder to ensure seamless permissions and "
    "login "
    "item support.",
    "OK",
    // the panel
    "Bluetooth Unavailable",
    "Searching",
    "Connecting",
    "Securing",
    "Connected",
    "Bluetooth unavailable",
    "Waiting for your iPhone",
    "No iPhone connected",
    "Securing connection…",
    "Search Again",
    "Cancel",
    "Disconnect",
    "Orbinex — ",
    "Orbinex",
    "Connecting…",
    "Nearby",
    "Not nearby",
    "Connect",
    "New iPhone",
    "Input control not allowed",
    "Allow…",
    "Open Orbinex…",
    "Quit Orbinex",
    "Signal ",
    " of 3",
    // the main window
    "ORBINEX",
    "Bluetooth Is Unavailable",
    "Open Bluetooth Settings",
    "Let's connect your iPhone",
    "If a pairing request appears, accept it on both your Mac and iPhone.",
    "Set up in four steps",
    "Open Orbinex on iPhone",
    "Get it on the App Store. Keep it open and unlocked.",
    "Choose your iPhone",
    "It appears under Nearby iPhones. Click Trust & Connect.",
    "Accept pairing",
    "Confirm the Bluetooth request on both devices — only once.",
    "Allow input control",
    "Lets taps and keys move the pointer and type.",
    "Allow Orbinex to control this Mac",
    "macOS requires your permission before an app can move the pointer, click, and type. Orbinex only posts "
    "input it receives from your trusted iPhone — it never reads your screen or other apps. You'll find it "
    "under Privacy & Security → Accessibility.",
    "Allow Access…",
    "Open Settings",
    "My iPhones",
    "No trusted iPhones yet. Trust an iPhone from the Nearby list to let it connect automatically.",
    "Securing…",
    "Last connected ",
    "More options for ",
    "Forget This iPhone…",
    "Nearby iPhones",
    "Search again",
    "Only trust iPhones you own. A trusted iPhone can control this Mac's pointer and keyboard.",
    "Trust & Connect",
    "Turn on Bluetooth to find nearby iPhones.",
    "No new iPhones found yet.",
    "Open Orbinex on your iPhone and keep it unlocked. Make sure Bluetooth is on and the iPhone shows “Ready "
    "to connect”.",
    "Permissions",
    "Input Control",
    "Allowed",
    "Required",
    "Bluetooth",
    "Settings…",
    "Unsupported",
    "Not allowed",
    "Off",
    "Starting…",
    "General",
    "Open at Login",
    "Start Orbinex when you log in.",
    "Approve in Login Items…",
    "Auto-Connect",
    "Reconnect to trusted iPhones automatically.",
    "Show in Dock",
    "Show in Menu Bar",
    "Orbinex ",
    "Get the iPhone App",
    "Privacy Policy",
    "Support",
    "Forget ",
    "Forget this iPhone?",
    "This iPhone will no longer connect automatically. To also remove the Bluetooth pairing, open System "
    "Settings → Bluetooth.",
    "Forget",
    // what cannot be opened
    "Couldn't Open It",
    "Nothing on this computer opens these settings for Orbinex. Look for “",
    "” in the settings of your desktop.",
    "Accessibility",
    "No browser was found. The address is ",
};

TEST(Texts, standInTheSourcesOnce) {
    const auto literals = literalsOfTheSources();
    for (const char* text : texts) {
        const auto found = literals.find(text);
        EXPECT_EQ(found == literals.end() ? 0 : found->second, 1) << text;
    }
}

TEST(Texts, areCountedRightly) {
    std::map<std::string, int> literals;
    count("#include \"a/b.h\"\n// \"no\"\nf(\"one \"\n  \"two\", \"one\"); g(\"one\");", literals);
    EXPECT_EQ(literals, (std::map<std::string, int>{{"one two", 1}, {"one", 2}}));
}

}  // namespace
}  // namespace orbinex
