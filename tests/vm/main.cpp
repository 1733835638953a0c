// Runs inside the virtual machine that scripts/test-vm boots, as root.

#include <QCoreApplication>
#include <cstdio>
#include <exception>

#include <gtest/gtest.h>

#include "vm/scenario.h"

int main(int argc, char** argv) {
    using orbinex::test::Machine;
    using orbinex::test::Scenario;
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    try {
        Scenario::machine = std::make_unique<Machine>();
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "vm_scenarios: %s\n", problem.what());
        return 1;
    }
    const int result = RUN_ALL_TESTS();
    Scenario::machine.reset();
    return result;
}
