#include "support/TestMain.h"

#include "base/Log.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {

QStringList openDescriptors()
{
    const QDir folder(QStringLiteral("/proc/self/fd"));
    QStringList targets;
    for (const QString &name :
         folder.entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot)) {
        const QString target = QFile::symLinkTarget(folder.filePath(name));
        // The event loops of the D-Bus libraries' own threads live as long as the process.
        if (!target.endsWith(QLatin1String("[eventfd]")))
            targets << name + QLatin1String(" -> ") + target;
    }
    return targets;
}

QByteArray children()
{
    QFile file(
        QStringLiteral("/proc/self/task/%1/children").arg(QCoreApplication::applicationPid()));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

void makeFolder(const QByteArray &variable, const QByteArray &path)
{
    QDir().mkpath(QFile::decodeName(path));
    QFile::setPermissions(QFile::decodeName(path),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv(variable.constData(), path);
}

} // namespace

TestSurroundings::TestSurroundings()
    : m_folder(QFile::encodeName(QDir::tempPath() + QLatin1String("/test-XXXXXX")))
{
    if (!::mkdtemp(m_folder.data()))
        throw std::runtime_error("no temporary folder for the test");
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                 "XDG_STATE_HOME", "SSH_AUTH_SOCK", "DISPLAY", "WAYLAND_DISPLAY"})
        qunsetenv(variable);
    makeFolder("HOME", m_folder + "/home");
    makeFolder("XDG_RUNTIME_DIR", m_folder + "/run");
    makeFolder("TMPDIR", m_folder + "/tmp");
    qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray("unix:path=" + m_folder + "/run/no-bus"));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Log::prepareStandardStreams(); // Before the open files are counted.
}

TestSurroundings::~TestSurroundings()
{
    QDir(QFile::decodeName(m_folder)).removeRecursively();
}

void TestSurroundings::failOnWarnings()
{
    // What the offscreen platform says of every window of a fixed or least size is no fault of
    // ours.
    QTest::failOnWarning(QRegularExpression(
        QStringLiteral("^(?!This plugin does not support propagateSizeHints\\(\\)$)")));
}

void TestSurroundings::noteStart()
{
    m_descriptors = static_cast<int>(openDescriptors().size());
}

int TestSurroundings::leftovers() const
{
    int count = 0;
    if (const QByteArray left = children(); !left.isEmpty()) {
        std::fprintf(stderr, "FAIL: child processes left behind: %s\n", left.constData());
        ++count;
    }
    const QStringList descriptors = openDescriptors();
    if (descriptors.size() > m_descriptors) {
        std::fprintf(stderr, "FAIL: %d open files at the start, now: %s\n", m_descriptors,
                     qPrintable(descriptors.join(QLatin1String(", "))));
        ++count;
    }
    return count;
}
