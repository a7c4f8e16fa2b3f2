#include "platform/linux/DesktopSystemSettings.h"

#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString kAddress = u"x-thing:here?there"_s;

} // namespace

class DesktopSystemSettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void everyDesktopHasItsCommands_data();
    void everyDesktopHasItsCommands();
    void desktopsOwnProgramIsStarted();
    void nextProgramServesWhereTheFirstIsMissing();
    void programThatCannotBeRunIsPassedOver();
    void programLivesInSurroundingsOfItsOwn();
    void addressIsOpenedWhereTheDesktopHasNoProgram();
    void nothingIsOpenedWhereNothingHandlesTheAddress();
    void nothingIsOpenedWithoutTheOpener();

private:
    void write(const QString &name, const QByteArray &bytes, bool isExecutable = false) const;
    /// A program that notes how it was called in a file named "called".
    void install(const QString &name) const;
    void installHandler() const;
    QByteArray called() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    DesktopSystemSettings m_settings;
};

void DesktopSystemSettingsTest::init()
{
    TestSurroundings::failOnWarnings();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_folder->path()).mkdir(u"bin"_s));
    qputenv("PATH", QFile::encodeName(m_folder->filePath(u"bin"_s)));
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder->filePath(u"data"_s)));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(m_folder->filePath(u"share"_s)));
}

void DesktopSystemSettingsTest::cleanup()
{
    for (const char *variable : {"XDG_CURRENT_DESKTOP", "XDG_DATA_HOME", "XDG_DATA_DIRS",
                                 "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
        qunsetenv(variable);
    qputenv("PATH", "/usr/bin:/bin");
    m_folder.reset();
}

void DesktopSystemSettingsTest::write(const QString &name, const QByteArray &bytes,
                                      bool isExecutable) const
{
    const QString path = m_folder->filePath(name);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
    file.close();
    if (isExecutable)
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void DesktopSystemSettingsTest::install(const QString &name) const
{
    const QByteArray note = QFile::encodeName(m_folder->filePath(u"called"_s));
    write(u"bin/"_s + name,
          "#!/bin/sh\nPATH=/usr/bin:/bin\n"
          "note=$(echo \"${0##*/}\" \"$@\"; pwd\n"
          "  readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2\n"
          "  echo \"token=$XDG_ACTIVATION_TOKEN$DESKTOP_STARTUP_ID desktop=$XDG_CURRENT_DESKTOP\"\n"
          "  grep SigIgn /proc/$$/status)\n"
          "echo \"$note\" > "
              + note + ".new\nmv " + note + ".new " + note + "\n",
          true);
}

void DesktopSystemSettingsTest::installHandler() const
{
    write(u"share/applications/a.desktop"_s, "[Desktop Entry]\n");
    write(u"share/applications/mimeinfo.cache"_s,
          "[MIME Cache]\nx-scheme-handler/x-thing=a.desktop;\n");
}

QByteArray DesktopSystemSettingsTest::called() const
{
    QFile file(m_folder->filePath(u"called"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void DesktopSystemSettingsTest::everyDesktopHasItsCommands_data()
{
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<QStringList>("programs");
    QTest::newRow("GNOME") << u"GNOME"_s << QStringList(u"gnome-control-center"_s);
    QTest::newRow("Ubuntu") << u"ubuntu:GNOME"_s << QStringList(u"gnome-control-center"_s);
    QTest::newRow("KDE") << u"KDE"_s
                         << QStringList{u"systemsettings"_s, u"systemsettings5"_s, u"kcmshell5"_s};
    QTest::newRow("Xfce") << u"XFCE"_s << QStringList(u"xfce4-settings-manager"_s);
    QTest::newRow("LXQt") << u"LXQt"_s << QStringList(u"lxqt-config"_s);
    QTest::newRow("Cinnamon") << u"X-Cinnamon"_s << QStringList(u"cinnamon-settings"_s);
    QTest::newRow("MATE") << u"MATE"_s << QStringList(u"mate-control-center"_s);
    QTest::newRow("unknown") << u"sway"_s << QStringList();
    QTest::newRow("not said") << QString() << QStringList();
    QTest::newRow("two") << u"sway:LXQt:XFCE"_s
                         << QStringList{u"lxqt-config"_s, u"xfce4-settings-manager"_s};
}

void DesktopSystemSettingsTest::everyDesktopHasItsCommands()
{
    QFETCH(const QString, desktop);
    QFETCH(const QStringList, programs);
    QStringList found;
    for (const QStringList &command : privacySettingsCommands(desktop))
        found << command.first();
    QCOMPARE(found, programs);
}

void DesktopSystemSettingsTest::desktopsOwnProgramIsStarted()
{
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    install(u"gnome-control-center"_s);
    install(u"xdg-open"_s);
    installHandler();
    QVERIFY(m_settings.openPrivacySettings(kAddress));
    QTRY_VERIFY(called().startsWith("gnome-control-center applications\n"));
}

void DesktopSystemSettingsTest::nextProgramServesWhereTheFirstIsMissing()
{
    install(u"systemsettings5"_s);
    QVERIFY(m_settings.openPrivacySettings(kAddress));
    QTRY_VERIFY(called().startsWith("systemsettings5\n"));
}

void DesktopSystemSettingsTest::programThatCannotBeRunIsPassedOver()
{
    write(u"bin/systemsettings"_s, "#!/not/there\n", true);
    install(u"systemsettings5"_s);
    QVERIFY(m_settings.openPrivacySettings(kAddress));
    QTRY_VERIFY(called().startsWith("systemsettings5\n"));
}

void DesktopSystemSettingsTest::programLivesInSurroundingsOfItsOwn()
{
    qputenv("XDG_ACTIVATION_TOKEN", "ours");
    qputenv("DESKTOP_STARTUP_ID", "ours");
    install(u"systemsettings"_s);
    QVERIFY(m_settings.openPrivacySettings(kAddress));
    QTRY_VERIFY(!called().isEmpty());
    const QList<QByteArray> lines = called().split('\n');
    QCOMPARE(lines.at(1), QFile::encodeName(QDir::homePath()));
    QCOMPARE(lines.mid(2, 3), QList<QByteArray>(3, "/dev/null"));
    QCOMPARE(lines.at(5), "token= desktop=KDE");
    QCOMPARE(lines.at(6), "SigIgn:\t0000000000000000");
}

void DesktopSystemSettingsTest::addressIsOpenedWhereTheDesktopHasNoProgram()
{
    install(u"xdg-open"_s);
    installHandler();
    QVERIFY(m_settings.openPrivacySettings(kAddress));
    QTRY_VERIFY(called().startsWith("xdg-open x-thing:here?there\n"));
}

void DesktopSystemSettingsTest::nothingIsOpenedWhereNothingHandlesTheAddress()
{
    install(u"xdg-open"_s);
    QVERIFY(!m_settings.openPrivacySettings(kAddress));
    QVERIFY(called().isEmpty());
}

void DesktopSystemSettingsTest::nothingIsOpenedWithoutTheOpener()
{
    installHandler();
    QVERIFY(!m_settings.openPrivacySettings(kAddress));
}

TESSERY_TEST_MAIN(QCoreApplication, DesktopSystemSettingsTest)

#include "DesktopSystemSettingsTest.moc"
