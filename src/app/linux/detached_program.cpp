#include "app/linux/detached_program.h"

#include <QFile>
#include <QProcess>

#include "app/linux/program_search.h"

namespace orbinex {

namespace {

/// Set by what starts a self-contained copy, and wrong for every other program.
QProcessEnvironment environmentOfTheSystem() {
    auto environment = QProcessEnvironment::systemEnvironment();
    if (!environment.contains("APPIMAGE")) return environment;
    for (const char* const name :
         {"APPIMAGE", "APPDIR", "ARGV0", "OWD", "LD_LIBRARY_PATH", "QT_PLUGIN_PATH", "QML2_IMPORT_PATH"})
        environment.remove(name);
    return environment;
}

}  // namespace

bool startDetached(const std::vector<std::string>& command, const std::string& startupToken) {
    if (command.empty()) return false;
    const auto file = findProgram(command.front());
    if (file.empty()) return false;
    QProcess process;
    process.setProgram(QFile::decodeName(file.c_str()));
    QStringList arguments;
    for (std::size_t i = 1; i < command.size(); ++i) arguments << QFile::decodeName(command[i].c_str());
    process.setArguments(arguments);
    auto environment = environmentOfTheSystem();
    if (!startupToken.empty()) environment.insert("DESKTOP_STARTUP_ID", QString::fromStdString(startupToken));
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

}  // namespace orbinex
