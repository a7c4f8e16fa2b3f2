// Logs as its arguments say, tells on standard error that it is done, and leaves when its input
// ends.

#include "base/Log.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>

namespace {

/// Prepares the log while no file can be opened, so that it has to use what it was started with.
void prepareWithoutMoreFiles()
{
    rlimit before = {};
    ::getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 3;
    ::setrlimit(RLIMIT_NOFILE, &none);
    Log::prepareStandardStreams();
    ::setrlimit(RLIMIT_NOFILE, &before);
}

void batch(int count)
{
    Log::Batch lines;
    for (int i = 0; i < count; ++i)
        lines.line(QString::number(i));
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.first() == QLatin1String("--starved")) {
        arguments.removeFirst();
        prepareWithoutMoreFiles();
    } else {
        Log::prepareStandardStreams();
    }

    for (; arguments.size() >= 2; arguments = arguments.mid(2)) {
        const QString &what = arguments.at(0);
        const QString &value = arguments.at(1);
        if (what == QLatin1String("line"))
            Log::line(value);
        else if (what == QLatin1String("batch"))
            batch(value.toInt());
        else if (what == QLatin1String("lines")) {
            for (int i = 0; i < value.toInt(); ++i)
                Log::line(QString::number(i));
        } else if (what == QLatin1String("open")) {
            std::fprintf(stderr, "opened %d\n", ::open(qPrintable(value), O_RDONLY | O_CLOEXEC));
        }
    }
    std::fputs("done\n", stderr);

    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
