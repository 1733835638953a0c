// The least program with a tray icon, to measure others by; with --tick one that also wakes up as often as
// meters do.

#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QPixmap picture(22, 22);
    picture.fill(Qt::white);
    QSystemTrayIcon icon{QIcon(picture)};
    icon.setToolTip("Bare");
    icon.show();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    if (QApplication::arguments().contains("--tick")) timer.start(66);
    return QApplication::exec();
}
