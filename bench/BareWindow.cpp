// The floor for opening a window: the least program with a tray item that opens one from its menu.
// It shows a word and a field, since what fonts take is taken by the first window that has text.

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QVBoxLayout>
#include <QWidget>

namespace {

void openWindow()
{
    auto *const window = new QWidget;
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(QStringLiteral("Settings"));
    window->setFixedSize(480, 520);
    auto *const layout = new QVBoxLayout(window);
    layout->addWidget(new QLabel(QStringLiteral("Label"), window));
    layout->addWidget(new QLineEdit(QStringLiteral("Text"), window));
    window->show();
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::darkCyan);
    QMenu menu;
    menu.addAction(QStringLiteral("Settings..."), &application, &openWindow);
    QSystemTrayIcon trayIcon((QIcon(pixmap)));
    trayIcon.setContextMenu(&menu);
    trayIcon.show();
    return QApplication::exec();
}
