#include "platform/linux/UrlHandlers.h"

#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class UrlHandlersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void schemeThatNobodyNamesHasNoHandler();
    void handlerIsFoundWhereverItIsNamed_data();
    void handlerIsFoundWhereverItIsNamed();
    void handlerThatIsNotInstalledIsNone();
    void handlerThatWasTakenAwayIsNone();
    void schemeIsComparedWhole();

private:
    void write(const QString &name, const QByteArray &bytes) const;
    void install(const QString &application) const
    {
        write(u"share/applications/"_s + application, "[Desktop Entry]\n");
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void UrlHandlersTest::init()
{
    TestSurroundings::failOnWarnings();
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_folder->filePath(u"config"_s)));
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(m_folder->filePath(u"xdg"_s)));
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder->filePath(u"data"_s)));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(m_folder->filePath(u"share"_s)));
    qputenv("XDG_CURRENT_DESKTOP", "LXQt");
}

void UrlHandlersTest::cleanup()
{
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_DATA_HOME",
                                 "XDG_DATA_DIRS", "XDG_CURRENT_DESKTOP"})
        qunsetenv(variable);
    m_folder.reset();
}

void UrlHandlersTest::write(const QString &name, const QByteArray &bytes) const
{
    const QString path = m_folder->filePath(name);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

void UrlHandlersTest::schemeThatNobodyNamesHasNoHandler()
{
    install(u"a.desktop"_s);
    write(u"share/applications/mimeinfo.cache"_s, "[MIME Cache]\ntext/plain=a.desktop;\n");
    QVERIFY(!hasUrlHandler(u"x-thing"_s));
}

void UrlHandlersTest::handlerIsFoundWhereverItIsNamed_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("group");
    QTest::newRow("user's default")
        << u"config/mimeapps.list"_s << QByteArray("Default Applications");
    QTest::newRow("user's, for the desktop")
        << u"config/lxqt-mimeapps.list"_s << QByteArray("Default Applications");
    QTest::newRow("added") << u"xdg/mimeapps.list"_s << QByteArray("Added Associations");
    QTest::newRow("old place") << u"data/applications/mimeapps.list"_s
                               << QByteArray("Default Applications");
    QTest::newRow("cache") << u"share/applications/mimeinfo.cache"_s << QByteArray("MIME Cache");
}

void UrlHandlersTest::handlerIsFoundWhereverItIsNamed()
{
    QFETCH(const QString, file);
    QFETCH(const QByteArray, group);
    install(u"a.desktop"_s);
    QVERIFY(!hasUrlHandler(u"x-thing"_s));
    write(file, '[' + group + "]\nx-scheme-handler/x-thing=gone.desktop;a.desktop;\n");
    QVERIFY(hasUrlHandler(u"x-thing"_s));
}

void UrlHandlersTest::handlerThatIsNotInstalledIsNone()
{
    write(u"config/mimeapps.list"_s,
          "[Default Applications]\nx-scheme-handler/x-thing=gone.desktop\n");
    QVERIFY(!hasUrlHandler(u"x-thing"_s));
}

void UrlHandlersTest::handlerThatWasTakenAwayIsNone()
{
    install(u"a.desktop"_s);
    write(u"config/mimeapps.list"_s,
          "[Removed Associations]\nx-scheme-handler/x-thing=a.desktop;\n");
    QVERIFY(!hasUrlHandler(u"x-thing"_s));
}

void UrlHandlersTest::schemeIsComparedWhole()
{
    install(u"a.desktop"_s);
    write(u"config/mimeapps.list"_s,
          "[Default Applications]\nx-scheme-handler/x-thing-more=a.desktop\n");
    QVERIFY(!hasUrlHandler(u"x-thing"_s));
}

TESSERY_TEST_MAIN(QCoreApplication, UrlHandlersTest)

#include "UrlHandlersTest.moc"
