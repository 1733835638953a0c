#include "program/desktop_application.h"

#include <QApplication>
#include <QSessionManager>

#include "app/linux/application_id.h"
#include "ui/interface.h"

namespace orbinex {

namespace {

constexpr const char* platformVariable = "QT_QPA_PLATFORM";

/// A saved session would start it again the next time, and not as a start at login. Whether it starts then is
/// for the autostart entry to say.
void keepOutOfSavedSessions(const QGuiApplication& application) {
    const auto refuse = [](QSessionManager& session) {
        session.setRestartHint(QSessionManager::RestartNever);
    };
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &application, refuse);
    QObject::connect(&application, &QGuiApplication::saveStateRequest, &application, refuse);
}

}  // namespace

std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, bool hasServer) {
    if (!hasServer) return std::make_unique<QCoreApplication>(argc, argv);
    Interface::prepareApplication();
    QGuiApplication::setDesktopFileName(applicationId);
    // Input goes to the X server in any case, and there alone a window can be put at the tray icon. That is
    // nothing for the programs that this one starts.
    const bool isChosen = qEnvironmentVariableIsSet(platformVariable);
    if (!isChosen) qputenv(platformVariable, "xcb");
    auto application = std::make_unique<QApplication>(argc, argv);
    if (!isChosen) qunsetenv(platformVariable);
    keepOutOfSavedSessions(*application);
    return application;
}

}  // namespace orbinex
