#include "platform/linux/AutostartEntry.h"

#include "support/DiskCalls.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString kName = u"/autostart/org.tessery.Tessery.desktop"_s;

} // namespace

class AutostartEntryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void nothingThereIsOff();
    void registeringMakesAnEntryThatStartsTheProgram();
    void programWithAnAwkwardPathIsStarted();
    void registeringTwiceChangesNothing();
    void unregisteringRemovesTheFile();
    void unregisteringWhatIsNotThereIsASuccess();
    void entryCountsWhenItWouldStartTheProgram_data();
    void entryCountsWhenItWouldStartTheProgram();
    void registeringPutsRightWhatIsWrong_data();
    void registeringPutsRightWhatIsWrong();
    void registeringKeepsEverythingElse();
    void fileThatIsNoEntryIsReplaced();
    void entryOfAnotherProgramIsOffAndReplacedWhenAsked();
    void programThatIsGoneIsStartedByNothing();
    void programThatMovedTakesItsEntryAlong();
    void switchedOffEntryDoesNotFollow();
    void entryOfAProgramThatExistsDoesNotFollow();
    void followingMakesNoEntry();
    void linkIsReadButNotWrittenThrough();
    void unregisteringRemovesTheLinkAlone();
    void danglingLinkGivesWay();
    void systemsEntryCounts();
    void systemsEntryIsHiddenByTheUsers();
    void unregisteringHidesTheSystemsEntry();
    void registeringShowsTheSystemsEntryAgain();
    void folderThatCannotBeMadeIsTold();
    void fileThatCannotBeReplacedIsToldAndNothingIsLeft();
    void entryThatCannotBeRemovedIsTold();
    void pipeInItsPlaceIsNoEntry();
    void entryIsOnTheDiskBeforeItIsInItsPlace();

private:
    AutostartEntry item() const { return AutostartEntry(m_program); }
    QString makeProgram(const QString &name) const;
    static void write(const QString &path, const QByteArray &bytes);
    static QByteArray read(const QString &path);
    QByteArray usersEntry() const { return read(m_users); }
    QByteArray withProgram(QByteArray text) const
    {
        return text.replace("PROGRAM", QFile::encodeName(m_program));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_program;
    QString m_users; ///< The path of the user's entry.
    QString m_systems;
};

void AutostartEntryTest::init()
{
    TestSurroundings::failOnWarnings();
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_folder->filePath(u"config"_s)));
    qputenv("XDG_CONFIG_DIRS",
            QFile::encodeName(m_folder->filePath(u"none"_s) + u':' + m_folder->filePath(u"xdg"_s)));
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    qputenv("PATH", QFile::encodeName(m_folder->filePath(u"bin"_s)));
    m_users = m_folder->filePath(u"config"_s) + kName;
    m_systems = m_folder->filePath(u"xdg"_s) + kName;
    m_program = makeProgram(u"bin/tessery"_s);
}

void AutostartEntryTest::cleanup()
{
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_CURRENT_DESKTOP"})
        qunsetenv(variable);
    qputenv("PATH", "/usr/bin:/bin");
    m_folder.reset();
}

QString AutostartEntryTest::makeProgram(const QString &name) const
{
    const QString path = m_folder->filePath(name);
    write(path, "#!/bin/sh\n");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

void AutostartEntryTest::write(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray AutostartEntryTest::read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(nothing)");
}

void AutostartEntryTest::nothingThereIsOff()
{
    QVERIFY(!item().isEnabled());
    QVERIFY(!QFileInfo::exists(m_folder->filePath(u"config"_s)));
}

void AutostartEntryTest::registeringMakesAnEntryThatStartsTheProgram()
{
    QCOMPARE(item().registerItem(), QString());
    QVERIFY(item().isEnabled());
    QCOMPARE(usersEntry(),
             withProgram("[Desktop Entry]\nType=Application\nName=Tessery\nExec=PROGRAM\n"
                         "Icon=org.tessery.Tessery\nTerminal=false\n"));
    const QStringList files =
        QFileInfo(m_users).dir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    QCOMPARE(files, QStringList(u"org.tessery.Tessery.desktop"_s));
}

void AutostartEntryTest::programWithAnAwkwardPathIsStarted()
{
    m_program = makeProgram(u"a b/\"$`\\%f'/tessery"_s);
    QCOMPARE(item().registerItem(), QString());
    QVERIFY(item().isEnabled());
}

void AutostartEntryTest::registeringTwiceChangesNothing()
{
    QCOMPARE(item().registerItem(), QString());
    const QByteArray content = usersEntry();
    QCOMPARE(item().registerItem(), QString());
    QCOMPARE(usersEntry(), content);
}

void AutostartEntryTest::unregisteringRemovesTheFile()
{
    QCOMPARE(item().registerItem(), QString());
    QCOMPARE(item().unregisterItem(), QString());
    QVERIFY(!QFileInfo::exists(m_users));
    QVERIFY(!item().isEnabled());
}

void AutostartEntryTest::unregisteringWhatIsNotThereIsASuccess()
{
    QCOMPARE(item().unregisterItem(), QString());
}

void AutostartEntryTest::entryCountsWhenItWouldStartTheProgram_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<bool>("isEnabled");
    QTest::newRow("plain") << QByteArray("Exec=PROGRAM\n") << true;
    QTest::newRow("with arguments") << QByteArray("Exec=PROGRAM --x %U\n") << true;
    QTest::newRow("found on the PATH") << QByteArray("Exec=tessery\n") << true;
    QTest::newRow("through env") << QByteArray("Exec=env A=1 B=2 PROGRAM\n") << true;
    QTest::newRow("env alone") << QByteArray("Exec=env A=1\n") << false;
    QTest::newRow("an argument only") << QByteArray("Exec=/bin/sh PROGRAM\n") << false;
    QTest::newRow("no Exec") << QByteArray("Name=Tessery\n") << false;
    QTest::newRow("Exec that cannot be parsed") << QByteArray("Exec=\"PROGRAM\n") << false;
    QTest::newRow("not there") << QByteArray("Exec=/not/there\n") << false;
    QTest::newRow("hidden") << QByteArray("Exec=PROGRAM\nHidden=true\n") << false;
    QTest::newRow("not hidden") << QByteArray("Exec=PROGRAM\nHidden=false\n") << true;
    QTest::newRow("switched off") << QByteArray("Exec=PROGRAM\nX-GNOME-Autostart-enabled=false\n")
                                  << false;
    QTest::newRow("switched on") << QByteArray("Exec=PROGRAM\nX-GNOME-Autostart-enabled=true\n")
                                 << true;
    QTest::newRow("for this desktop")
        << QByteArray("Exec=PROGRAM\nOnlyShowIn=KDE;GNOME;\n") << true;
    QTest::newRow("for others") << QByteArray("Exec=PROGRAM\nOnlyShowIn=KDE;\n") << false;
    QTest::newRow("for none") << QByteArray("Exec=PROGRAM\nOnlyShowIn=\n") << false;
    QTest::newRow("not for this one") << QByteArray("Exec=PROGRAM\nNotShowIn=GNOME\n") << false;
    QTest::newRow("not for others") << QByteArray("Exec=PROGRAM\nNotShowIn=KDE;\n") << true;
    QTest::newRow("TryExec there") << QByteArray("Exec=PROGRAM\nTryExec=tessery\n") << true;
    QTest::newRow("TryExec missing") << QByteArray("Exec=PROGRAM\nTryExec=/not/there\n") << false;
}

void AutostartEntryTest::entryCountsWhenItWouldStartTheProgram()
{
    QFETCH(const QByteArray, keys);
    QFETCH(const bool, isEnabled);
    makeProgram(u"bin/env"_s);
    write(m_users, "[Desktop Entry]\n" + withProgram(keys));
    QCOMPARE(item().isEnabled(), isEnabled);
}

void AutostartEntryTest::registeringPutsRightWhatIsWrong_data()
{
    entryCountsWhenItWouldStartTheProgram_data();
}

void AutostartEntryTest::registeringPutsRightWhatIsWrong()
{
    QFETCH(const QByteArray, keys);
    makeProgram(u"bin/env"_s);
    write(m_users, "[Desktop Entry]\n" + withProgram(keys));
    QCOMPARE(item().registerItem(), QString());
    QVERIFY(item().isEnabled());
}

void AutostartEntryTest::registeringKeepsEverythingElse()
{
    write(m_users,
          withProgram("# mine\n[Desktop Entry]\nName[de]=Tessera\nExec=env A=1 PROGRAM\n"
                      "Hidden=true\nX-Delay=30\n\n[X-Other]\nKey=1\n"));
    makeProgram(u"bin/env"_s);
    QCOMPARE(item().registerItem(), QString());
    QCOMPARE(usersEntry(),
             withProgram("# mine\n[Desktop Entry]\nName[de]=Tessera\nExec=env A=1 PROGRAM\n"
                         "X-Delay=30\nType=Application\nName=Tessery\nIcon=org.tessery.Tessery\n"
                         "Terminal=false\n\n[X-Other]\nKey=1\n"));
}

void AutostartEntryTest::fileThatIsNoEntryIsReplaced()
{
    QCOMPARE(item().registerItem(), QString());
    const QByteArray proper = usersEntry();
    write(m_users, "\x89PNG\n");
    QVERIFY(!item().isEnabled());
    QCOMPARE(item().registerItem(), QString());
    QCOMPARE(usersEntry(), proper);
}

void AutostartEntryTest::entryOfAnotherProgramIsOffAndReplacedWhenAsked()
{
    const QString other = makeProgram(u"other/tessery"_s);
    QCOMPARE(AutostartEntry(other).registerItem(), QString());
    QVERIFY(!item().isEnabled());
    QCOMPARE(item().registerItem(), QString());
    QVERIFY(item().isEnabled());
    QVERIFY(!AutostartEntry(other).isEnabled());
}

void AutostartEntryTest::programThatIsGoneIsStartedByNothing()
{
    write(m_users, "[Desktop Entry]\nExec=/not/there\n");
    QVERIFY(QFile::remove(m_program));
    QVERIFY(!item().isEnabled());
}

void AutostartEntryTest::programThatMovedTakesItsEntryAlong()
{
    const QString old = makeProgram(u"old/tessery"_s);
    QCOMPARE(AutostartEntry(old).registerItem(), QString());
    QVERIFY(QFile::remove(old));
    QVERIFY(!item().isEnabled());
    item().followMovedProgram();
    QVERIFY(item().isEnabled());
}

void AutostartEntryTest::switchedOffEntryDoesNotFollow()
{
    write(m_users, "[Desktop Entry]\nExec=/not/there\nHidden=true\n");
    const QByteArray before = usersEntry();
    item().followMovedProgram();
    QCOMPARE(usersEntry(), before);
}

void AutostartEntryTest::entryOfAProgramThatExistsDoesNotFollow()
{
    QCOMPARE(AutostartEntry(makeProgram(u"other/tessery"_s)).registerItem(), QString());
    const QByteArray before = usersEntry();
    item().followMovedProgram();
    QCOMPARE(usersEntry(), before);
}

void AutostartEntryTest::followingMakesNoEntry()
{
    item().followMovedProgram();
    QVERIFY(!QFileInfo::exists(m_folder->filePath(u"config"_s)));
}

void AutostartEntryTest::linkIsReadButNotWrittenThrough()
{
    const QString target = m_folder->filePath(u"launcher.desktop"_s);
    const QByteArray content = withProgram("[Desktop Entry]\nComment=mine\nExec=PROGRAM\n");
    write(target, content);
    QVERIFY(QDir().mkpath(QFileInfo(m_users).path()));
    QVERIFY(QFile::link(target, m_users));
    QVERIFY(item().isEnabled());

    write(target, content + "Hidden=true\n");
    QVERIFY(!item().isEnabled());
    QCOMPARE(item().registerItem(), QString());
    QVERIFY(item().isEnabled());
    QVERIFY(!QFileInfo(m_users).isSymLink());
    QVERIFY(usersEntry().contains("Comment=mine\n"));
    QCOMPARE(read(target), content + "Hidden=true\n");
}

void AutostartEntryTest::unregisteringRemovesTheLinkAlone()
{
    const QString target = m_folder->filePath(u"launcher.desktop"_s);
    write(target, withProgram("[Desktop Entry]\nExec=PROGRAM\n"));
    QVERIFY(QDir().mkpath(QFileInfo(m_users).path()));
    QVERIFY(QFile::link(target, m_users));
    QCOMPARE(item().unregisterItem(), QString());
    QVERIFY(!QFileInfo(m_users).isSymLink());
    QVERIFY(QFileInfo::exists(target));
}

void AutostartEntryTest::danglingLinkGivesWay()
{
    const QString target = m_folder->filePath(u"gone.desktop"_s);
    QVERIFY(QDir().mkpath(QFileInfo(m_users).path()));
    QVERIFY(QFile::link(target, m_users));
    QVERIFY(!item().isEnabled());
    QCOMPARE(item().registerItem(), QString());
    QVERIFY(item().isEnabled());
    QVERIFY(!QFileInfo::exists(target));
}

void AutostartEntryTest::systemsEntryCounts()
{
    write(m_systems, withProgram("[Desktop Entry]\nExec=PROGRAM\n"));
    QVERIFY(item().isEnabled());
}

void AutostartEntryTest::systemsEntryIsHiddenByTheUsers()
{
    write(m_systems, withProgram("[Desktop Entry]\nExec=PROGRAM\n"));
    write(m_users, "[Desktop Entry]\nHidden=true\n");
    QVERIFY(!item().isEnabled());
}

void AutostartEntryTest::unregisteringHidesTheSystemsEntry()
{
    const QByteArray content = withProgram("[Desktop Entry]\nExec=PROGRAM\nComment=theirs\n");
    write(m_systems, content);
    QCOMPARE(item().unregisterItem(), QString());
    QVERIFY(!item().isEnabled());
    QCOMPARE(usersEntry(), content + "Hidden=true\n");
    QCOMPARE(read(m_systems), content);
}

void AutostartEntryTest::registeringShowsTheSystemsEntryAgain()
{
    write(m_systems, withProgram("[Desktop Entry]\nExec=PROGRAM\n"));
    QCOMPARE(item().unregisterItem(), QString());
    QCOMPARE(item().registerItem(), QString());
    QVERIFY(item().isEnabled());
}

void AutostartEntryTest::folderThatCannotBeMadeIsTold()
{
    write(m_folder->filePath(u"config"_s), "in the way");
    QCOMPARE(item().registerItem(),
             u"Could not create %1: Not a directory"_s.arg(QFileInfo(m_users).path()));
    QVERIFY(!item().isEnabled());
    QCOMPARE(item().unregisterItem(), QString());
}

void AutostartEntryTest::fileThatCannotBeReplacedIsToldAndNothingIsLeft()
{
    QVERIFY(QDir().mkpath(m_users));
    QCOMPARE(item().registerItem(), u"Could not write %1: Is a directory"_s.arg(m_users));
    QVERIFY(!QFileInfo::exists(m_users + u".new"_s));
}

void AutostartEntryTest::entryThatCannotBeRemovedIsTold()
{
    QVERIFY(QDir().mkpath(m_users));
    QCOMPARE(item().unregisterItem(), u"Could not remove %1: Is a directory"_s.arg(m_users));
}

void AutostartEntryTest::pipeInItsPlaceIsNoEntry()
{
    QVERIFY(QDir().mkpath(QFileInfo(m_users).path()));
    QCOMPARE(::mkfifo(QFile::encodeName(m_users).constData(), 0600), 0);
    QVERIFY(!item().isEnabled());
    QCOMPARE(item().registerItem(), QString());
    QVERIFY(item().isEnabled());
}

void AutostartEntryTest::entryIsOnTheDiskBeforeItIsInItsPlace()
{
    const DiskCalls calls;
    QCOMPARE(item().registerItem(), QString());
    QCOMPARE(calls.all(),
             QByteArrayList({"org.tessery.Tessery.desktop: synced", "autostart/: synced"}));
}

TESSERY_TEST_MAIN(QCoreApplication, AutostartEntryTest)

#include "AutostartEntryTest.moc"
