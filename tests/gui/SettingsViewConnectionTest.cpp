#include "gui/SettingsWindow.h"
#include "support/TestMain.h"
#include "ui/settings/StatusBadge.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QObject>
#include <QRegularExpression>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Status = StatusBadge::Status;

class SettingsViewConnectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_window = std::make_unique<SettingsWindow>();
    }

    void cleanup() { m_window.reset(); }

    void testButtonIsOnTheServerTabOnly()
    {
        m_window->open();
        QVERIFY(m_window->find(u"test"_s)->isVisible());
        for (const QString &tab : {u"tab.filenames"_s, u"tab.shortcuts"_s, u"tab.general"_s}) {
            m_window->click(tab);
            QVERIFY(!m_window->find(u"test"_s)->isVisible());
            QVERIFY(m_window->find(u"save"_s)->isVisible());
        }
        m_window->click(u"tab.server"_s);
        QVERIFY(m_window->find(u"test"_s)->isVisible());
    }

    void testSendsTheUnsavedSettingsAndTheTestFile()
    {
        m_window->curlDoes("printf '%s\\n' \"$@\" > " + seen("args") + "; cat "
                           + QFile::encodeName(m_window->path(u"tmp"_s)) + "/test_* > "
                           + seen("contents"));
        m_window->fillIn();
        m_window->open();
        m_window->retype(u"hostname"_s, u"unsaved.example"_s);
        m_window->click(u"test"_s);
        QTRY_COMPARE(badge()->message(), u"Connection OK!"_s);
        QCOMPARE(badge()->status(), Status::success);
        QCOMPARE(contents("contents"), "Test");
        const QRegularExpression address(
            u"ftp://unsaved\\.example:21/test_[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.txt"_s);
        QVERIFY2(address.match(QString::fromUtf8(contents("args"))).hasMatch(),
                 contents("args").constData());
        QCOMPARE(m_window->temporaryFiles(), QStringList());
        QCOMPARE(m_window->state->settings().hostname, u"127.0.0.1"_s);
    }

    void failedTestShowsAWarningAndKeepsItsFile()
    {
        m_window->curlDoes("exit 7");
        m_window->fillIn();
        m_window->open();
        m_window->click(u"test"_s);
        QTRY_COMPARE(badge()->message(), u"Connection failed"_s);
        QCOMPARE(badge()->status(), Status::warning);
        QCOMPARE(m_window->temporaryFiles().size(), 1);
        const QString path = m_window->path(u"tmp/"_s + m_window->temporaryFiles().first());
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777U, 0600U);
        QVERIFY(m_window->find(u"test"_s)->isEnabled());
    }

    void testThatCannotWriteItsFileFails()
    {
        m_window->fillIn();
        m_window->open();
        QVERIFY(QDir(m_window->path(u"tmp"_s)).removeRecursively());
        m_window->click(u"test"_s);
        QTRY_COMPARE(badge()->message(), u"Connection failed"_s);
        QVERIFY(m_window->find(u"test"_s)->isEnabled());
    }

    void testMessageGoesAfterItsTime()
    {
        m_window->testMessageTime = 50ms;
        m_window->fillIn();
        m_window->open();
        m_window->click(u"test"_s);
        QTRY_COMPARE(badge()->message(), u"Connection OK!"_s);
        QTRY_VERIFY(!badge()->isVisible());
    }

    void secondTestIsImpossibleWhileOneRuns()
    {
        m_window->curlDoes("echo x >> " + seen("runs") + "; read line < " + gate());
        m_window->fillIn();
        m_window->open();
        m_window->click(u"test"_s);
        QVERIFY(!m_window->find(u"test"_s)->isEnabled());
        QCOMPARE(m_window->find(u"test"_s)->accessibleDescription(), u"Testing..."_s);
        m_window->click(u"test"_s);
        QCOMPARE(m_window->state->tasks().running(), 1);
        // The window stays alive and can be edited.
        m_window->retype(u"username"_s, u"other"_s);
        QVERIFY(!m_window->find(u"test"_s)->isEnabled());
        openGate();
        QTRY_VERIFY(m_window->find(u"test"_s)->isEnabled());
        QCOMPARE(contents("runs"), "x\n");
        QCOMPARE(m_window->find(u"test"_s)->accessibleDescription(), QString());
    }

    void testGoesOnWhileAnotherTabIsShown()
    {
        m_window->curlDoes("read line < " + gate());
        m_window->fillIn();
        m_window->open();
        m_window->click(u"test"_s);
        m_window->click(u"tab.general"_s);
        openGate();
        QTRY_COMPARE(badge()->message(), u"Connection OK!"_s);
    }

    void closingDuringATestIsSafe()
    {
        m_window->curlDoes("read line < " + gate());
        m_window->fillIn();
        m_window->open();
        m_window->click(u"test"_s);
        m_window->view.reset();
        openGate();
        QTRY_COMPARE(m_window->state->tasks().running(), 0);
        QCOMPARE(m_window->temporaryFiles(), QStringList());
    }

    void quittingEndsTheTest()
    {
        m_window->curlDoes("exec sleep 60");
        m_window->fillIn();
        m_window->open();
        m_window->click(u"test"_s);
        m_window->state->tasks().requestStop();
        QTRY_COMPARE(m_window->state->tasks().running(), 0);
    }

    void testStoresThePasswordFirst()
    {
        m_window->curlDoes("cat " + QFile::encodeName(m_window->path(u"tmp"_s)) + "/.netrc_* > "
                           + seen("netrc"));
        m_window->fillIn();
        m_window->open();
        m_window->retype(u"password"_s, u"newest"_s);
        m_window->press(u"test"_s);
        QTRY_COMPARE(badge()->message(), u"Connection OK!"_s);
        QVERIFY(contents("netrc").contains("newest"));
    }

private:
    StatusBadge *badge() const { return m_window->find<StatusBadge>(u"badge"_s); }

    QByteArray seen(const char *name) const
    {
        return QFile::encodeName(m_window->path(QLatin1String(name)));
    }
    QByteArray contents(const char *name) const
    {
        QFile file(m_window->path(QLatin1String(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    /// A pipe that the shell program waits at.
    QByteArray gate() const
    {
        const QByteArray path = seen("gate");
        if (::mkfifo(path.constData(), 0600) != 0)
            qFatal("no pipe");
        return path;
    }
    void openGate() const
    {
        QFile file(m_window->path(u"gate"_s));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QCOMPARE(file.write("go\n"), 3);
    }

    std::unique_ptr<SettingsWindow> m_window;
};

TESSERY_TEST_MAIN(QApplication, SettingsViewConnectionTest)
#include "SettingsViewConnectionTest.moc"
