// The floor for start-up time and memory: the least program that shows a tray item with a menu.

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::darkCyan);
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), &application, &QCoreApplication::quit);
    QSystemTrayIcon trayIcon((QIcon(pixmap)));
    trayIcon.setContextMenu(&menu);
    trayIcon.show();
    return QApplication::exec();
}
