#pragma once

#include <QCoreApplication>

namespace orbinex {

/// The one of the process, made at the first call.
inline QCoreApplication& coreApplication() {
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    static QCoreApplication instance(argc, argv);
    return instance;
}

}  // namespace orbinex
