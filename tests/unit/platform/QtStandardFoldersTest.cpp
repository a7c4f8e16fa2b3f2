#include "platform/linux/QtStandardFolders.h"

#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTest>

#include <libintl.h>

#include <clocale>
#include <cstdint>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// A catalogue of translations, compiled: what each message is in another language. The messages
/// must be in the order of their bytes.
QByteArray catalogue(const std::vector<std::pair<QByteArray, QByteArray>> &messages)
{
    const auto count = static_cast<std::uint32_t>(messages.size());
    constexpr std::uint32_t kHeader = 7 * sizeof(std::uint32_t);
    const std::uint32_t table = count * 2 * sizeof(std::uint32_t);
    std::vector<std::uint32_t> originals;
    std::vector<std::uint32_t> translations;
    QByteArray text;
    const auto add = [&](std::vector<std::uint32_t> &entries, const QByteArray &string) {
        entries.push_back(static_cast<std::uint32_t>(string.size()));
        entries.push_back(static_cast<std::uint32_t>(kHeader + 2 * table + text.size()));
        text += string + '\0';
    };
    for (const auto &[original, translation] : messages) {
        add(originals, original);
        add(translations, translation);
    }
    std::vector<std::uint32_t> numbers = {0x950412de, 0, count, kHeader, kHeader + table, 0, 0};
    numbers.insert(numbers.end(), originals.begin(), originals.end());
    numbers.insert(numbers.end(), translations.begin(), translations.end());
    QByteArray bytes;
    for (const std::uint32_t number : numbers)
        bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
    return bytes + text;
}

QString inHome(const QString &name)
{
    return QDir::homePath() + u'/' + name;
}

} // namespace

class QtStandardFoldersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void homeIsTheEnvironments();
    void desktopIsInTheHomeFolderByDefault();
    void desktopIsWhatTheUserConfigured();
    void noScreenshotFolderIsTheUsualCase();
    void screenshotFoldersAreThoseThatExist();
    void screenshotFolderIsOnlyAFolder();
    void screenshotFoldersFollowTheUsersPicturesFolder();
    void screenshotFoldersHaveTheNamesThatTheToolsGiveThem();

private:
    static void makeFolder(const QString &name) { QVERIFY(QDir::home().mkpath(name)); }
    static void write(const QString &name, const QByteArray &data);
};

void QtStandardFoldersTest::init()
{
    TestSurroundings::failOnWarnings();
    makeFolder(u".config"_s);
}

void QtStandardFoldersTest::cleanup()
{
    QFile::remove(inHome(u".config/user-dirs.dirs"_s));
    for (const QString &name : {u"Pictures"_s, u"Bilder"_s, u"Shots"_s})
        QVERIFY(QDir(inHome(name)).removeRecursively());
}

void QtStandardFoldersTest::write(const QString &name, const QByteArray &data)
{
    QFile file(inHome(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(data), data.size());
}

void QtStandardFoldersTest::homeIsTheEnvironments()
{
    QCOMPARE(QtStandardFolders().home(), qEnvironmentVariable("HOME"));
}

void QtStandardFoldersTest::desktopIsInTheHomeFolderByDefault()
{
    QCOMPARE(QtStandardFolders().desktop(), qEnvironmentVariable("HOME") + u"/Desktop"_s);
}

void QtStandardFoldersTest::desktopIsWhatTheUserConfigured()
{
    write(u".config/user-dirs.dirs"_s, "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n");
    QCOMPARE(QtStandardFolders().desktop(), qEnvironmentVariable("HOME") + u"/Schreibtisch"_s);
}

void QtStandardFoldersTest::noScreenshotFolderIsTheUsualCase()
{
    QCOMPARE(QtStandardFolders().screenshots(), QStringList());
    makeFolder(u"Pictures"_s);
    write(u".config/user-dirs.dirs"_s, "XDG_SCREENSHOTS_DIR=\"$HOME/Shots\"\n");
    QCOMPARE(QtStandardFolders().screenshots(), QStringList());
}

void QtStandardFoldersTest::screenshotFoldersAreThoseThatExist()
{
    write(u".config/user-dirs.dirs"_s, "XDG_SCREENSHOTS_DIR=\"$HOME/Shots\"\n");
    makeFolder(u"Pictures/Screenshots"_s);
    QCOMPARE(QtStandardFolders().screenshots(), QStringList({inHome(u"Pictures/Screenshots"_s)}));
    makeFolder(u"Shots"_s);
    QCOMPARE(QtStandardFolders().screenshots(),
             QStringList({inHome(u"Shots"_s), inHome(u"Pictures/Screenshots"_s)}));
}

void QtStandardFoldersTest::screenshotFolderIsOnlyAFolder()
{
    makeFolder(u"Pictures"_s);
    write(u"Pictures/Screenshots"_s, "A file.");
    QCOMPARE(QtStandardFolders().screenshots(), QStringList());
}

void QtStandardFoldersTest::screenshotFoldersFollowTheUsersPicturesFolder()
{
    write(u".config/user-dirs.dirs"_s,
          "XDG_PICTURES_DIR=\"$HOME/Bilder\"\nXDG_SCREENSHOTS_DIR=\"$HOME/Bilder/Screenshots\"\n");
    makeFolder(u"Bilder/Screenshots"_s);
    QCOMPARE(QtStandardFolders().screenshots(), QStringList({inHome(u"Bilder/Screenshots"_s)}));
}

void QtStandardFoldersTest::screenshotFoldersHaveTheNamesThatTheToolsGiveThem()
{
    // A locale of the country's name is all that the translation needs.
    makeFolder(u"locales"_s);
    QVERIFY(QFile::link(u"/usr/lib/locale/C.utf8"_s, inHome(u"locales/fr_FR.utf8"_s)));
    qputenv("LOCPATH", QFile::encodeName(inHome(u"locales"_s)));
    const auto restore = qScopeGuard([] {
        std::setlocale(LC_ALL, "C.UTF-8");
        qunsetenv("LOCPATH");
    });
    QVERIFY(std::setlocale(LC_ALL, "fr_FR.UTF-8"));
    makeFolder(u"fr/LC_MESSAGES"_s);
    const std::pair<QByteArray, QByteArray> header("", "Content-Type: text/plain; charset=UTF-8\n");
    write(u"fr/LC_MESSAGES/gnome-shell.mo"_s,
          catalogue({header, {"Screenshots", "Captures d’écran"}}));
    write(u"fr/LC_MESSAGES/spectacle.mo"_s,
          catalogue({header, {"translatable folder name\x04Screenshots", "Copies d'écran"}}));
    for (const char *tool : {"gnome-shell", "spectacle"})
        ::bindtextdomain(tool, QFile::encodeName(QDir::homePath()).constData());

    makeFolder(u"Pictures/Bildschirmfotos"_s);
    QCOMPARE(QtStandardFolders().screenshots(), QStringList());
    QStringList expected;
    for (const QString &name : {u"Screenshots"_s, u"Captures d’écran"_s, u"Copies d'écran"_s}) {
        expected << inHome(u"Pictures/"_s + name);
        makeFolder(u"Pictures/"_s + name);
        QCOMPARE(QtStandardFolders().screenshots(), expected);
    }
}

TESSERY_TEST_MAIN(QCoreApplication, QtStandardFoldersTest)
#include "QtStandardFoldersTest.moc"
