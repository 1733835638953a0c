#pragma once

#include <list>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vm/bluetooth.h"
#include "vm/bluetooth_daemon.h"
#include "vm/desktop.h"
#include "vm/process.h"
#include "vm/transcript.h"

namespace orbinex::test {

/// The controller that the program under test takes, and those of the phones.
inline const std::string hostAdapter = "hci0";
inline const std::string phoneAdapter = "hci1";
inline const std::string secondPhoneAdapter = "hci2";

/// What all scenarios of one boot share.
class Machine {
  public:
    /// Takes where things are from the environment: ORBINEX_VM_PROGRAMS is the folder of the programs under
    /// test, ORBINEX_VM_LOGS that for logs. Throws std::runtime_error when something cannot be had.
    Machine();

    [[nodiscard]] std::string program(const std::string& name) const { return programs_ + "/" + name; }
    [[nodiscard]] std::string log(const std::string& name) const { return logs_ + "/" + name; }

  private:
    std::string programs_;
    std::string logs_;

  public:
    Bluetooth bluetooth;
    BluetoothDaemon daemon;
    Desktop desktop;
};

/// One scenario. It finds all controllers powered and knowing nobody, and a desktop where nothing is held
/// down; afterwards every program is ended and all that must be so again.
class Scenario : public testing::Test {
  public:
    /// Set for the whole run, by main().
    static std::unique_ptr<Machine> machine;

  protected:
    Scenario();
    ~Scenario() override;
    void SetUp() override;
    void TearDown() override;

    /// Starts orbinex on the machine's desktop. All runs of one scenario have the same settings folder, which
    /// is empty at first.
    Process& startProgram();
    /// Ends it as a session does; it must end well.
    void endProgram();
    /// Starts a phone on a controller, with options of orbinex_test_phone.
    Process& startPhone(const std::string& adapter = phoneAdapter,
                        const std::vector<std::string>& options = {});
    /// Starts any other program; it is ended with the scenario, in the order of starting.
    Process& start(const std::string& name, const std::vector<std::string>& command);

    [[nodiscard]] Process& program() const { return *program_; }
    [[nodiscard]] static Bluetooth& bluetooth() { return machine->bluetooth; }
    [[nodiscard]] static BluetoothDaemon& daemon() { return machine->daemon; }
    [[nodiscard]] static Desktop& desktop() { return machine->desktop; }

  private:
    std::string home_;
    std::unique_ptr<Process> program_;
    std::list<Process> others_;
};

}  // namespace orbinex::test
