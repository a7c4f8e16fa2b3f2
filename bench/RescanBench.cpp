// What a rescan of the watched folder costs over bare getdents64 calls on the same folder, by the
// kind of names in it. Nothing in these folders gives log lines of its own. Figures go to standard
// error; the log goes to /dev/null. The argument names the folder to work in, whose file system
// counts; a private folder is made there and removed.

#include "PairedRatio.h"

#include "monitor/ScreenshotMonitor.h"
#include "support/FakeFolderWatcher.h"
#include "support/FakeStandardFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int kRounds = 301;

/// The least that any program does that reads the whole folder.
void bareRead(const QByteArray &path)
{
    static std::array<char, 32 * 1024> buffer;
    const int folder = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (::syscall(SYS_getdents64, folder, buffer.data(), buffer.size()) > 0) { }
    ::close(folder);
}

/// A home whose Desktop holds count files with the given beginnings in turn, and a monitor of it.
class Subject {
public:
    Subject(const QString &home, int count, const QStringList &beginnings)
        : m_desktop(QFile::encodeName(home + "/Desktop"_L1))
    {
        QDir().mkpath(home + "/Desktop"_L1);
        for (int i = 0; i < count; ++i) {
            QFile file(u"%1/Desktop/%2 %3.txt"_s.arg(home, beginnings[i % beginnings.size()])
                           .arg(i, 6, 10, QChar(u'0')));
            if (!file.open(QIODevice::WriteOnly))
                qFatal("Cannot write %s", qUtf8Printable(file.fileName()));
        }
        FakeStandardFolders folders;
        folders.homePath = home;
        const auto makeWatcher = [this] {
            auto watcher = std::make_unique<FakeFolderWatcher>();
            m_watcher = watcher.get();
            return watcher;
        };
        m_monitor = std::make_unique<ScreenshotMonitor>(folders, makeWatcher, [](const QUrl &) {});
        if (!m_monitor->start().isEmpty())
            qFatal("Cannot watch %s", m_desktop.constData());
    }

    void read() const { bareRead(m_desktop); }
    void rescan() const { m_watcher->deliverBatch(); }

private:
    QByteArray m_desktop;
    std::unique_ptr<ScreenshotMonitor> m_monitor;
    FakeFolderWatcher *m_watcher = nullptr;
};

struct Case {
    const char *name;
    QStringList beginnings;
};

const std::array kCases = {
    Case{"ASCII", {u"document"_s, u"holiday"_s, u"report"_s, u"letter"_s}},
    Case{"ASCII, first letters of prefixes", {u"script"_s, u"sky"_s, u"captain"_s, u"export"_s}},
    Case{"ASCII, known screenshots", {u"Screenshot 2025-12-01"_s}},
    Case{"not ASCII", {u"документ"_s, u"文書"_s, u"문서"_s, u"Übersicht"_s, u"เอกสาร"_s}},
    Case{"not ASCII, Cyrillic", {u"документ"_s, u"письмо"_s}},
    Case{"not ASCII, first letters of prefixes", {u"система"_s, u"зима"_s, u"截止"_s, u"ลิงก์"_s}},
    Case{"not ASCII, decomposed", {u"e\u0301tat"_s, u"se\u0301rie"_s, u"cafe\u0301"_s}},
    Case{"not ASCII, known screenshots", {u"Снимок экрана"_s, u"截屏"_s, u"Képernyőkép"_s}},
    Case{"the same, decomposed", {u"Capture d'e\u0301cran"_s, u"Ke\u0301pernyo\u030Bke\u0301p"_s}},
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString where = argc > 1 ? QFile::decodeName(argv[1]) : QStringLiteral(TESSERY_BUILD_DIR);
    const QTemporaryDir folder(where + "/rescan-XXXXXX"_L1);
    if (!folder.isValid())
        qFatal("Cannot make a folder in %s", qUtf8Printable(where));
    const QStorageInfo storage(folder.path());
    std::fprintf(stderr, "%s on %s (%s)\n", qUtf8Printable(folder.path()),
                 storage.fileSystemType().constData(), storage.device().constData());
    const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (::dup2(nothing, STDOUT_FILENO) < 0)
        return EXIT_FAILURE;

    for (const Case &names : kCases) {
        const Subject subject(folder.filePath(QString::fromUtf8(names.name)), 10'000,
                              names.beginnings);
        printPairedRatio(
            names.name, kRounds, 1, [&] { subject.read(); }, [&] { subject.rescan(); });
    }
    const Subject small(folder.filePath(u"small"_s), 10'000, kCases[0].beginnings);
    const Subject large(folder.filePath(u"large"_s), 100'000, kCases[0].beginnings);
    printPairedRatio(
        "100,000 over ten times 10,000", 31, 1,
        [&] {
            for (int i = 0; i < 10; ++i)
                small.rescan();
        },
        [&] { large.rescan(); });
    printPairedRatio(
        "the same, bare reads", 31, 1,
        [&] {
            for (int i = 0; i < 10; ++i)
                small.read();
        },
        [&] { large.read(); });
    return EXIT_SUCCESS;
}
