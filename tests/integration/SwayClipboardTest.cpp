#include "platform/linux/Surroundings.h"
#include "platform/linux/wayland/WaylandPasteboard.h"
#include "support/PrivateSway.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QProcess>

#include <csignal>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// Copies and pastes as other programs do, while this one goes on.
std::optional<QByteArray> run(const QString &program, const QStringList &arguments,
                              const QByteArray &input = {})
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, 20000)
        || process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput();
}

} // namespace

/// The clipboard against a real compositor and real clients of it.
class SwayClipboardTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        if (!m_sway)
            m_sway.emplace();
        QVERIFY(!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"));
        m_pasteboard = std::make_unique<WaylandPasteboard>();
    }
    void cleanup()
    {
        m_owner.reset();
        m_pasteboard.reset();
    }
    void cleanupTestCase() { m_sway.reset(); }

    void surroundingsAreSeen()
    {
        qputenv("DISPLAY", ":65000");
        const Surroundings found = Surroundings::look(0, nullptr);
        QVERIFY(found.isWaylandSession);
        QVERIFY(found.offersDataControl);
        QVERIFY(found.hasWaylandPlugin);
        QVERIFY(!found.hasXDisplay());
        QElapsedTimer time;
        time.start();
        for (int i = 0; i < 100; ++i)
            Surroundings::look(0, nullptr);
        qInfo("looking around takes %.2f ms", double(time.nsecsElapsed()) / 1e8);
    }

    void hungCompositorIsWaitedForAndThenLeftAlone()
    {
        m_sway->send(SIGSTOP);
        const Surroundings found = Surroundings::look(0, nullptr);
        QVERIFY(found.isWaylandSession);
        QVERIFY(!found.offersDataControl);
        m_sway->send(SIGCONT);
    }

    void othersReadWhatIsWritten_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("address") << u"https://x.org/shots/a b.png"_s;
        QTest::newRow("any characters") << u"ä€😀\n\ttwo lines"_s;
        QTest::newRow("10 MB") << QString(10'000'000, u'x');
    }
    void othersReadWhatIsWritten()
    {
        QFETCH(const QString, text);
        QVERIFY(write(text));
        for (const QString &type : {u"text/plain;charset=utf-8"_s, u"text/plain"_s,
                                    u"UTF8_STRING"_s, u"STRING"_s, u"TEXT"_s})
            QVERIFY(run(u"wl-paste"_s, {u"--no-newline"_s, u"--type"_s, type}) == text.toUtf8());
    }

    void whatOthersCopyReplacesWhatIsWritten()
    {
        QVERIFY(write(u"ours"_s));
        copy({}, "theirs");
        QTRY_COMPARE(text(), u"theirs"_s);
        QVERIFY(write(u"ours again"_s));
        QCOMPARE(run(u"wl-paste"_s, {u"--no-newline"_s}), QByteArray("ours again"));
    }

    void ownTextIsRead()
    {
        QVERIFY(write(u"own words"_s));
        QCOMPARE(text(), u"own words"_s);
    }

    void whatOthersCopyIsRead_data()
    {
        QTest::addColumn<QByteArray>("copied");
        QTest::newRow("words") << QByteArray("wörds\n");
        QTest::newRow("10 MB") << QByteArray(10'000'000, 'x');
    }
    void whatOthersCopyIsRead()
    {
        QFETCH(const QByteArray, copied);
        copy({}, copied);
        QTRY_VERIFY(text().toUtf8() == copied);
    }

    void emptyClipboardIsEmpty()
    {
        QVERIFY(run(u"wl-copy"_s, {u"--clear"_s}));
        const auto content = m_pasteboard->content();
        QVERIFY(QCoro::waitFor(content->addresses()).isEmpty());
        QVERIFY(QCoro::waitFor(content->text()).isEmpty());
        QVERIFY(!QCoro::waitFor(content->image()));
    }

    void filesAndImagesAreRead()
    {
        copy({u"--type"_s, u"text/uri-list"_s}, "file:///a%20b\r\nfile:///c\r\n");
        QTRY_COMPARE(QCoro::waitFor(m_pasteboard->content()->addresses()),
                     (QList<QUrl>{QUrl(u"file:///a%20b"_s), QUrl(u"file:///c"_s)}));
        copy({u"--type"_s, u"image/png"_s}, "pixels");
        QTRY_COMPARE(QCoro::waitFor(m_pasteboard->content()->image()), QByteArray("pixels"));
    }

    void hungOwnerIsGivenUp()
    {
        copy({}, "words");
        QTRY_COMPARE(text(), u"words"_s);
        ::kill(static_cast<pid_t>(m_owner->processId()), SIGSTOP);
        QElapsedTimer time;
        time.start();
        QCOMPARE(text(), QString());
        QVERIFY(time.elapsed() >= 1900);
        QVERIFY(write(u"ours"_s)); // It holds nobody else up.
        QCOMPARE(text(), u"ours"_s);
    }

    void ownerThatGoesIsGone()
    {
        copy({}, "words");
        QTRY_COMPARE(text(), u"words"_s);
        m_owner.reset();
        QTRY_COMPARE(text(), QString());
    }

    void compositorThatGoesIsSurvived()
    {
        QVERIFY(write(u"words"_s));
        m_sway->send(SIGKILL);
        QTRY_VERIFY(!Surroundings::look(0, nullptr).isWaylandSession);
        QVERIFY(!write(u"words"_s));
        QCOMPARE(text(), QString());
        m_sway.reset();
        m_sway.emplace();
        QVERIFY(write(u"words"_s));
        QCOMPARE(run(u"wl-paste"_s, {u"--no-newline"_s}), QByteArray("words"));
    }

private:
    bool write(const QString &written) { return QCoro::waitFor(m_pasteboard->writeText(written)); }

    QString text() const
    {
        const auto content = m_pasteboard->content();
        return QCoro::waitFor(content->text());
    }

    /// Another program copies, and stays.
    void copy(const QStringList &options, const QByteArray &data)
    {
        std::unique_ptr<QProcess, Kill> owner(new QProcess);
        owner->start(u"wl-copy"_s, QStringList{u"--foreground"_s} + options);
        owner->write(data);
        owner->closeWriteChannel();
        QVERIFY(owner->waitForStarted());
        std::swap(owner, m_owner);
        if (owner) {
            // Replaced, it ends by itself; hung, it does not.
            QTRY_VERIFY(owner->state() == QProcess::NotRunning);
        }
    }

    struct Kill {
        void operator()(QProcess *process) const
        {
            process->kill();
            process->waitForFinished();
            delete process;
        }
    };

    std::optional<PrivateSway> m_sway;
    std::unique_ptr<WaylandPasteboard> m_pasteboard;
    std::unique_ptr<QProcess, Kill> m_owner;
};

TESSERY_TEST_MAIN(QGuiApplication, SwayClipboardTest)
#include "SwayClipboardTest.moc"
