// Another client of the desktop: prints each text that comes onto the clipboard, with the time of
// the monotonic clock, in nanoseconds, at which it had been read.

#include <QClipboard>
#include <QGuiApplication>

#include <chrono>
#include <cstdio>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const QClipboard *const clipboard = QGuiApplication::clipboard();
    QObject::connect(clipboard, &QClipboard::dataChanged, clipboard, [clipboard] {
        const QByteArray text = clipboard->text().toUtf8();
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        std::printf("%lld %s\n", static_cast<long long>(std::chrono::nanoseconds(now).count()),
                    text.constData());
        std::fflush(stdout);
    });
    std::puts("ready");
    std::fflush(stdout);
    return QGuiApplication::exec();
}
