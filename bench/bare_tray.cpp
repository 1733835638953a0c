// The least program with a tray icon, to measure others by.

#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QPixmap picture(22, 22);
    picture.fill(Qt::white);
    QSystemTrayIcon icon{QIcon(picture)};
    icon.setToolTip("Bare");
    icon.show();
    return QApplication::exec();
}
