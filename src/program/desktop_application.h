#pragma once

#include <QCoreApplication>
#include <memory>

namespace orbinex {

/// The application object: with windows where there is an X server, otherwise just what answers --help and
/// --version. It keeps references to both arguments.
[[nodiscard]] std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, bool hasServer);

}  // namespace orbinex
