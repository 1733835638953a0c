#pragma once

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "vm/bluetooth.h"
#include "vm/process.h"

namespace orbinex::test {

/// The one bluetoothd of the machine. It serves all controllers: the one that the program uses and the ones
/// that are phones.
class BluetoothDaemon {
  public:
    /// What it prints goes to the log file, which must be writable.
    BluetoothDaemon(Bluetooth& bluetooth, std::string logFile)
        : bluetooth_(bluetooth), logFile_(std::move(logFile)) {}

    /// Starts it if it does not run. Returns when every controller of the machine is on the bus and powered.
    testing::AssertionResult start();
    /// kill -9. Returns when the bus has noticed.
    void kill();
    [[nodiscard]] bool isRunning() const { return process_ && process_->isRunning(); }
    /// As Process tells it; zero while it does not run.
    [[nodiscard]] Milliseconds processorTime() const {
        return process_ ? process_->processorTime() : Milliseconds::zero();
    }

  private:
    Bluetooth& bluetooth_;
    std::string logFile_;
    std::optional<Process> process_;
};

}  // namespace orbinex::test
