#include "platform/linux/QtStandardFolders.h"

#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class QtStandardFoldersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }
    void homeIsTheEnvironments();
    void desktopIsInTheHomeFolderByDefault();
    void desktopIsWhatTheUserConfigured();
};

void QtStandardFoldersTest::homeIsTheEnvironments()
{
    QCOMPARE(QtStandardFolders().home(), qEnvironmentVariable("HOME"));
}

void QtStandardFoldersTest::desktopIsInTheHomeFolderByDefault()
{
    QCOMPARE(QtStandardFolders().desktop(), qEnvironmentVariable("HOME") + u"/Desktop");
}

void QtStandardFoldersTest::desktopIsWhatTheUserConfigured()
{
    QVERIFY(QDir::home().mkpath(u".config"_s));
    QFile file(QDir::home().filePath(u".config/user-dirs.dirs"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n");
    file.close();
    QCOMPARE(QtStandardFolders().desktop(), qEnvironmentVariable("HOME") + u"/Schreibtisch");
    QVERIFY(file.remove());
}

TESSERY_TEST_MAIN(QCoreApplication, QtStandardFoldersTest)
#include "QtStandardFoldersTest.moc"
