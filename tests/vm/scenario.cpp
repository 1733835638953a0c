#include "vm/scenario.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace orbinex::test {

using namespace std::chrono_literals;

namespace {

constexpr Milliseconds endLimit = 20s;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    if (!value) throw std::runtime_error(std::string(name) + " is not set; scenarios run by scripts/test-vm");
    return value;
}

}  // namespace

std::unique_ptr<Machine> Scenario::machine;

Machine::Machine()
    : programs_(variable("ORBINEX_VM_PROGRAMS")),
      logs_(variable("ORBINEX_VM_LOGS")),
      daemon(bluetooth, log("bluetoothd.log")) {}

Scenario::Scenario() {
    std::string folder = std::filesystem::temp_directory_path() / "orbinex-scenario-XXXXXX";
    if (!::mkdtemp(folder.data())) throw std::runtime_error("no folder for settings");
    home_ = folder;
}

Scenario::~Scenario() {
    std::error_code ignored;
    std::filesystem::remove_all(home_, ignored);
}

void Scenario::SetUp() {
    ASSERT_TRUE(daemon().start());
    for (const std::string& adapter : bluetooth().adapters()) {
        ASSERT_TRUE(bluetooth().isPowered(adapter) || bluetooth().setPowered(adapter, true));
        bluetooth().forgetAll(adapter);
        ASSERT_TRUE(bluetooth().devices(adapter).empty()) << adapter;
    }
    desktop().client().takeEvents();
}

void Scenario::TearDown() {
    endProgram();
    while (!others_.empty()) {
        others_.front().terminate();
        if (!others_.front().waitForEnd(endLimit))
            ADD_FAILURE() << "a program does not end when it is asked to";
        others_.pop_front();
    }
    EXPECT_TRUE(desktop().nothingIsHeldDown());
    EXPECT_TRUE(!daemon().isRunning() || bluetooth().nothingIsLeft(hostAdapter));
    // For the next one, however this one ended.
    for (const std::string& adapter : bluetooth().adapters()) {
        EXPECT_TRUE(bluetooth().isPowered(adapter) || bluetooth().setPowered(adapter, true));
    }
}

Process& Scenario::startProgram() {
    // A window of the program's, such as the one that asks about a pairing, would cover what the scenarios
    // look at.
    const Process::Environment environment{
        {"DISPLAY", desktop().display()}, {"QT_QPA_PLATFORM", "offscreen"}, {"XDG_CONFIG_HOME", home_}};
    program_ = std::make_unique<Process>(
        "orbinex",
        std::vector<std::string>{machine->program("orbinex"), "--at-login", "--adapter", hostAdapter},
        environment);
    return *program_;
}

void Scenario::endProgram() {
    if (!program_ || !program_->isRunning()) return;
    program_->terminate();
    EXPECT_EQ(program_->waitForEnd(endLimit), 0);
    program_->kill();
}

Process& Scenario::startPhone(const std::string& adapter, const std::vector<std::string>& options) {
    std::vector<std::string> command{machine->program("orbinex_test_phone"), "--adapter", adapter};
    command.insert(command.end(), options.begin(), options.end());
    return start(adapter == phoneAdapter ? "phone" : "phone on " + adapter, command);
}

Process& Scenario::start(const std::string& name, const std::vector<std::string>& command) {
    return others_.emplace_back(name, command);
}

}  // namespace orbinex::test
