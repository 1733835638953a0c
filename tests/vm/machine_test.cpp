// That the machine is what scenarios take it for.

#include <array>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "vm/scenario.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

class MachineCheck : public Scenario {};

TEST_F(MachineCheck, hasAControllerForTheProgramAndTwoForPhones) {
    EXPECT_EQ(bluetooth().adapters(),
              (std::vector<std::string>{hostAdapter, phoneAdapter, secondPhoneAdapter}));
    for (const std::string& adapter : bluetooth().adapters()) {
        EXPECT_TRUE(bluetooth().isPowered(adapter));
        EXPECT_FALSE(bluetooth().isDiscovering(adapter));
    }
}

TEST_F(MachineCheck, letsTheControllersHearEachOther) {
    Process& phone = start("phone", {"bluetoothctl"});
    ASSERT_TRUE(phone.waitFor("Agent registered", 20s));
    phone.send("select " + bluetooth().address(phoneAdapter));
    phone.send("advertise on");
    ASSERT_TRUE(phone.waitFor("Advertising object registered", 20s));

    Process& host = start("host", {"bluetoothctl"});
    ASSERT_TRUE(host.waitFor("Agent registered", 20s));
    host.send("select " + bluetooth().address(hostAdapter));
    host.send("scan le");
    EXPECT_TRUE(host.waitFor("Device " + bluetooth().address(phoneAdapter), 20s));
    EXPECT_EQ(bluetooth().leftovers(hostAdapter),
              (std::vector<std::string>{"a scan runs", "a pairing agent is registered"}));
}

TEST_F(MachineCheck, switchesAControllerOffAndOn) {
    EXPECT_TRUE(bluetooth().setPowered(hostAdapter, false));
    EXPECT_TRUE(bluetooth().isPowered(phoneAdapter));
    EXPECT_TRUE(bluetooth().setPowered(hostAdapter, true));
}

TEST_F(MachineCheck, bringsBluetoothdBackAfterAKill) {
    daemon().kill();
    EXPECT_FALSE(bluetooth().isUp());
    EXPECT_TRUE(bluetooth().adapters().empty());
    ASSERT_TRUE(daemon().start());
    EXPECT_EQ(bluetooth().adapters().size(), 3U);
}

TEST_F(MachineCheck, showsTheClientWhatIsDoneOnTheDesktop) {
    XClient& client = desktop().client();
    constexpr unsigned keyA = 38;
    client.key(keyA, true);
    EXPECT_FALSE(desktop().nothingIsHeldDown());
    client.key(keyA, false);
    EXPECT_EQ(client.takeText(), "a");
    client.movePointerBy(5, 3);
    EXPECT_FALSE(client.takeEvents().empty());
}

TEST_F(MachineCheck, runsTheProgramOnTheDesktop) {
    startProgram();
    ASSERT_TRUE(program().waitFor("Starting Bluetooth…", 30s));
    EXPECT_GT(program().openDescriptors(), 3);
    endProgram();
}

/// A wheel made of uinput, as long as this lives.
class VirtualWheel {
  public:
    VirtualWheel() : fd_(::open("/dev/uinput", O_WRONLY | O_NONBLOCK | O_CLOEXEC)) {
        uinput_setup setup{};
        setup.id.bustype = BUS_VIRTUAL;
        std::string_view("orbinex check").copy(setup.name, sizeof setup.name - 1);
        set(UI_SET_EVBIT, {EV_REL, EV_KEY});
        // Without motion and a button it is not taken for a mouse.
        set(UI_SET_KEYBIT, {BTN_LEFT});
        set(UI_SET_RELBIT, {REL_X, REL_Y, REL_WHEEL, REL_WHEEL_HI_RES});
        isThere_ = ::ioctl(fd_, UI_DEV_SETUP, &setup) == 0 && ::ioctl(fd_, UI_DEV_CREATE) == 0;
    }
    VirtualWheel(const VirtualWheel&) = delete;
    VirtualWheel& operator=(const VirtualWheel&) = delete;
    ~VirtualWheel() { ::close(fd_); }

    [[nodiscard]] bool isThere() const { return isThere_; }
    /// The file under which programs read it; empty when there is none.
    [[nodiscard]] std::string node() const {
        std::array<char, 64> name{};
        ::ioctl(fd_, UI_GET_SYSNAME(name.size()), name.data());
        const std::string folder = std::string("/sys/devices/virtual/input/") + name.data();
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string file = entry.path().filename();
            if (file.starts_with("event")) return "/dev/input/" + file;
        }
        return {};
    }
    void turn(int amount) const {
        for (const input_event& event : {input_event{{}, EV_REL, REL_WHEEL_HI_RES, amount}, input_event{}})
            ASSERT_EQ(::write(fd_, &event, sizeof event), static_cast<ssize_t>(sizeof event));
    }

  private:
    void set(unsigned long request, std::initializer_list<int> bits) const {
        for (const int bit : bits) ::ioctl(fd_, request, bit);
    }

    int fd_;
    bool isThere_ = false;
};

TEST_F(MachineCheck, letsLibinputReadADeviceMadeOfUinput) {
    const VirtualWheel wheel;
    ASSERT_TRUE(wheel.isThere());
    Process& settled = start("udevadm", {"udevadm", "settle"});
    ASSERT_EQ(settled.waitForEnd(20s), 0);
    Process& events =
        start("libinput", {"stdbuf", "-oL", "libinput", "debug-events", "--device", wheel.node()});
    ASSERT_TRUE(events.waitFor("DEVICE_ADDED", 20s));
    // Less than half a click would be taken for a jolt.
    wheel.turn(-90);
    EXPECT_TRUE(events.waitFor(std::regex("POINTER_SCROLL_WHEEL.*vert 11\\.25/90\\.0"), 20s));
}

TEST_F(MachineCheck, hasAnAlsaSequencer) {
    Process& list = start("aconnect", {"aconnect", "-l"});
    EXPECT_TRUE(list.waitFor("Midi Through", 20s));
    EXPECT_EQ(list.waitForEnd(20s), 0);
}

}  // namespace
}  // namespace orbinex::test
