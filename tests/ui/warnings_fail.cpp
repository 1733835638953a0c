// What goes wrong in QML is said as a warning only; in these tests it is a failure.

#include <QString>
#include <QtGlobal>

#include <gtest/gtest.h>

namespace {

void failOnWarnings(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    if (message.contains("propagateSizeHints") || message.contains("XDG_RUNTIME_DIR") ||
        message.contains("systemTrayWindowChanged") || message.contains("does not support raise"))
        return;
    ADD_FAILURE() << message.toStdString();
}

const auto previousHandler = qInstallMessageHandler(failOnWarnings);

}  // namespace
