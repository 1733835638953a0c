// The least program with a window of Qt Quick Controls, to measure others by.

#include <QGuiApplication>
#include <QQmlApplicationEngine>

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.loadData(R"(
import QtQuick
import QtQuick.Controls

ApplicationWindow {
    visible: true
    width: 720
    height: 640
    title: "Bare"
    Button {
        anchors.centerIn: parent
        text: "Press"
    }
}
)");
    return QGuiApplication::exec();
}
