// That the machine is what scenarios take it for.

#include <array>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <linux/uinput.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "vm/scenario.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

class MachineCheck : public Scenario {};

/// The file under which programs read an input device, which the kernel calls such as "input3".
std::filesystem::path eventNode(const std::string& name) {
    for (const auto& entry : std::filesystem::directory_iterator("/sys/devices/virtual/input/" + name)) {
        const std::string file = entry.path().filename();
        if (file.starts_with("event")) return "/dev/input/" + file;
    }
    return {};
}

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
    EXPECT_TRUE(bluetooth().isDiscovering(hostAdapter));
    EXPECT_TRUE(bluetooth().isPairable(hostAdapter));
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

TEST_F(MachineCheck, letsADeviceBeMadeOfUinput) {
    const int made = ::open("/dev/uinput", O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(made, 0);
    uinput_setup setup{};
    setup.id.bustype = BUS_VIRTUAL;
    std::string_view("orbinex check").copy(setup.name, sizeof setup.name - 1);
    ASSERT_EQ(::ioctl(made, UI_SET_EVBIT, EV_REL), 0);
    ASSERT_EQ(::ioctl(made, UI_SET_RELBIT, REL_WHEEL_HI_RES), 0);
    ASSERT_EQ(::ioctl(made, UI_DEV_SETUP, &setup), 0);
    ASSERT_EQ(::ioctl(made, UI_DEV_CREATE), 0);

    std::array<char, 64> name{};
    ASSERT_GE(::ioctl(made, UI_GET_SYSNAME(name.size()), name.data()), 0);
    const auto node = eventNode(name.data());
    const int read = ::open(node.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(read, 0) << node;
    for (const input_event& event : {input_event{{}, EV_REL, REL_WHEEL_HI_RES, 15}, input_event{}})
        ASSERT_EQ(::write(made, &event, sizeof event), static_cast<ssize_t>(sizeof event));
    pollfd waiting{read, POLLIN, 0};
    ASSERT_EQ(::poll(&waiting, 1, 10'000), 1);
    input_event seen{};
    ASSERT_EQ(::read(read, &seen, sizeof seen), static_cast<ssize_t>(sizeof seen));
    EXPECT_EQ(seen.code, REL_WHEEL_HI_RES);
    EXPECT_EQ(seen.value, 15);
    ::close(read);
    ::close(made);
}

TEST_F(MachineCheck, hasAnAlsaSequencer) {
    Process& list = start("aconnect", {"aconnect", "-l"});
    EXPECT_TRUE(list.waitFor("Midi Through", 20s));
    EXPECT_EQ(list.waitForEnd(20s), 0);
}

}  // namespace
}  // namespace orbinex::test
