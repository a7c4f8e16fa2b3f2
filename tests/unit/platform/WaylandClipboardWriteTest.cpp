#include "platform/linux/wayland/WaylandPasteboard.h"
#include "support/CapturedOutput.h"
#include "support/FakeCompositor.h"
#include "support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using OnClaim = FakeCompositor::OnClaim;

namespace {

/// Another program that pastes.
struct Paste {
    explicit Paste(const FakeCompositor &compositor, const QString &type = u"text/plain"_s)
    {
        std::array<int, 2> ends = {};
        QCOMPARE(::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
        reader = UniqueFd(ends[0]);
        compositor.paste(type, UniqueFd(ends[1]));
    }

    /// Takes what there is. Whether the end is not there yet.
    bool goesOn()
    {
        QByteArray piece(1024 * 1024, Qt::Uninitialized);
        const ssize_t count = ::read(reader.get(), piece.data(), std::size_t(piece.size()));
        if (count > 0)
            data.append(piece.constData(), count);
        return count != 0;
    }

    UniqueFd reader;
    QByteArray data;
};

int openFiles()
{
    return static_cast<int>(QDir(u"/proc/self/fd"_s).entryList(QDir::NoFilter).size());
}

} // namespace

class WaylandClipboardWriteTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // As the program does; Qt Test has put a handler in its place.
        std::signal(SIGPIPE, SIG_IGN);
    }
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_compositor.emplace(QList{FakeCompositor::Protocol::Wlr});
        m_pasteboard = std::make_unique<WaylandPasteboard>();
    }
    void cleanup()
    {
        m_pasteboard.reset();
        QTRY_COMPARE(m_compositor ? m_compositor->clients() : 0, 0);
        m_compositor.reset();
    }

    void textIsThereForOthers_data()
    {
        QTest::addColumn<FakeCompositor::Protocol>("protocol");
        QTest::newRow("wlr") << FakeCompositor::Protocol::Wlr;
        QTest::newRow("ext") << FakeCompositor::Protocol::Ext;
    }
    void textIsThereForOthers()
    {
        QFETCH(const FakeCompositor::Protocol, protocol);
        m_compositor.reset();
        m_compositor.emplace(QList{protocol});
        m_compositor->copyText("before");
        QVERIFY(write(u"https://x.org/ä.png"_s));
        QCOMPARE(m_compositor->types.first(5),
                 QStringList({u"text/plain;charset=utf-8"_s, u"text/plain"_s, u"UTF8_STRING"_s,
                              u"STRING"_s, u"TEXT"_s}));
        for (const QString &type : std::as_const(m_compositor->types)) {
            Paste paste(*m_compositor, type);
            QTRY_VERIFY(!paste.goesOn());
            QCOMPARE(paste.data, "https://x.org/ä.png");
        }
    }

    void ownTextIsRead()
    {
        QVERIFY(write(u"own words"_s));
        const auto content = m_pasteboard->content();
        QCOMPARE(QCoro::waitFor(content->text()), u"own words"_s);
    }

    void emptyTextIsWritten()
    {
        QVERIFY(write(QString()));
        Paste paste(*m_compositor);
        QTRY_VERIFY(!paste.goesOn());
        QVERIFY(paste.data.isEmpty());
    }

    void failureIsTold_data()
    {
        QTest::addColumn<OnClaim>("onClaim");
        QTest::addColumn<QString>("line");
        QTest::newRow("ignored") << OnClaim::Ignore
                                 << u"⚠️ The compositor has not put the text on the clipboard"_s;
        QTest::newRow("cancelled")
            << OnClaim::Cancel << u"⚠️ Another program has taken the clipboard over"_s;
        QTest::newRow("taken over")
            << OnClaim::TakeOver << u"⚠️ Another program has taken the clipboard over"_s;
    }
    void failureIsTold()
    {
        QFETCH(const OnClaim, onClaim);
        m_compositor->onClaim = onClaim;
        CapturedOutput output;
        QVERIFY(!write(u"words"_s));
        QTEST(output.lines().join(u'\n'), "line");
        QTRY_COMPARE(m_compositor->clients(), 0);
        m_compositor->onClaim = OnClaim::Accept;
        QVERIFY(write(u"words"_s));
    }

    void noAccessIsTold_data()
    {
        QTest::addColumn<QList<FakeCompositor::Protocol>>("offered");
        QTest::addColumn<bool>("hasSeat");
        QTest::newRow("not shared") << QList<FakeCompositor::Protocol>{} << true;
        QTest::newRow("no seat") << QList{FakeCompositor::Protocol::Ext} << false;
    }
    void noAccessIsTold()
    {
        QFETCH(const QList<FakeCompositor::Protocol>, offered);
        QFETCH(const bool, hasSeat);
        m_compositor.reset();
        m_compositor.emplace(offered, hasSeat);
        CapturedOutput output;
        QVERIFY(!write(u"words"_s));
        m_compositor.reset();
        QVERIFY(!write(u"words"_s));
        const QString line = u"⚠️ The compositor gives no access to the clipboard"_s;
        QCOMPARE(output.lines(), QStringList({line, line}));
    }

    void frozenCompositorIsGivenUpWithoutBlocking()
    {
        m_compositor->freeze(true);
        int ticks = 0;
        QTimer ticking;
        connect(&ticking, &QTimer::timeout, this, [&ticks] { ++ticks; });
        ticking.start(100);
        QVERIFY(!write(u"words"_s));
        QVERIFY2(ticks > 5, "the event loop went on");
        m_compositor->freeze(false);
    }

    void compositorThatGoesWhileWritingIsNoSuccess()
    {
        m_compositor->onClaim = OnClaim::Ignore;
        const auto written = m_pasteboard->writeText(u"words"_s);
        QTRY_COMPARE(m_compositor->claims, 1);
        QElapsedTimer time;
        time.start();
        m_compositor.reset();
        QVERIFY(!QCoro::waitFor(written));
        QVERIFY2(time.elapsed() < 1500, "nobody is waited for who is gone");
    }

    void seatThatGoesWhileWritingIsNoSuccess()
    {
        m_compositor->onClaim = OnClaim::Ignore;
        const auto written = m_pasteboard->writeText(u"words"_s);
        QTRY_COMPARE(m_compositor->claims, 1);
        m_compositor->removeSeat();
        QVERIFY(!QCoro::waitFor(written));
    }

    void ofSeveralAtATimeTheLastStays()
    {
        const auto first = m_pasteboard->writeText(u"first"_s);
        const auto second = m_pasteboard->writeText(u"second"_s);
        const auto third = m_pasteboard->writeText(u"third"_s);
        QVERIFY(QCoro::waitFor(first));
        QVERIFY(QCoro::waitFor(second));
        QVERIFY(QCoro::waitFor(third));
        Paste paste(*m_compositor);
        QTRY_VERIFY(!paste.goesOn());
        QCOMPARE(paste.data, "third");
        QTRY_COMPARE(m_compositor->clients(), 1);
    }

    void connectionEndsWhenAnotherProgramCopies()
    {
        QVERIFY(write(u"words"_s));
        QCOMPARE(m_compositor->clients(), 1);
        m_compositor->copyText("of another program");
        QTRY_COMPARE(m_compositor->clients(), 0);
    }

    void nextCompositorIsUsed()
    {
        QVERIFY(write(u"words"_s));
        m_compositor.reset();
        m_compositor.emplace(QList{FakeCompositor::Protocol::Ext});
        QVERIFY(write(u"other words"_s));
        Paste paste(*m_compositor);
        QTRY_VERIFY(!paste.goesOn());
        QCOMPARE(paste.data, "other words");
    }

    void slowReaderGetsEverything()
    {
        const QString large(5'000'000, u'x');
        QVERIFY(write(large));
        Paste slow(*m_compositor);
        Paste other(*m_compositor);
        QTRY_VERIFY(!other.goesOn()); // Nobody waits for the slow one,
        QCOMPARE(other.data.size(), large.size());
        m_compositor->copyText("of another program"); // nor does that one lose anything.
        QTRY_COMPARE(m_compositor->clients(), 0);
        QTRY_VERIFY(!slow.goesOn());
        QVERIFY(slow.data == large.toUtf8());
    }

    void readerThatNeverReadsIsGivenUp()
    {
        m_pasteboard = std::make_unique<WaylandPasteboard>(200ms);
        QVERIFY(write(QString(5'000'000, u'x')));
        const int before = openFiles();
        const Paste stuck(*m_compositor);
        QTRY_COMPARE(openFiles(), before + 2); // Its end and ours,
        QTRY_COMPARE(openFiles(), before + 1); // until ours is closed.
    }

    void readerThatGoesAwayCostsNothing()
    {
        QVERIFY(write(QString(5'000'000, u'x')));
        const int before = openFiles();
        std::optional<Paste> paste(*m_compositor);
        QTRY_COMPARE(openFiles(), before + 2);
        QVERIFY(paste->goesOn());
        paste.reset();
        QTRY_COMPARE(openFiles(), before);
        QVERIFY(write(u"words"_s));
    }

    void endWaitsForReaders()
    {
        QVERIFY(write(QString(1'000'000, u'x')));
        Paste paste(*m_compositor);
        QTimer reading;
        connect(&reading, &QTimer::timeout, this, [&paste] { paste.goesOn(); });
        QTRY_VERIFY(paste.goesOn() && !paste.data.isEmpty());
        reading.start(10ms);
        QCoro::waitFor(m_pasteboard->handOver());
        while (paste.goesOn() && errno != EAGAIN) { }
        QCOMPARE(paste.data.size(), 1'000'000);
    }

    void endDoesNotWaitLong_data()
    {
        QTest::addColumn<bool>("hasReader");
        QTest::addColumn<int>("least");
        QTest::addColumn<int>("most");
        QTest::newRow("nobody reads") << false << 0 << 500;
        QTest::newRow("a reader that never reads") << true << 900 << 5000;
    }
    void endDoesNotWaitLong()
    {
        QFETCH(const bool, hasReader);
        QVERIFY(write(QString(1'000'000, u'x')));
        std::optional<Paste> stuck;
        if (hasReader) {
            const int before = openFiles();
            stuck.emplace(*m_compositor);
            QTRY_COMPARE(openFiles(), before + 2);
        }
        QElapsedTimer time;
        time.start();
        QCoro::waitFor(m_pasteboard->handOver());
        QFETCH(const int, least);
        QFETCH(const int, most);
        QVERIFY(time.elapsed() >= least && time.elapsed() <= most);
    }

private:
    bool write(const QString &text) { return QCoro::waitFor(m_pasteboard->writeText(text)); }

    std::optional<FakeCompositor> m_compositor;
    std::unique_ptr<WaylandPasteboard> m_pasteboard;
};

TESSERY_TEST_MAIN(QGuiApplication, WaylandClipboardWriteTest)
#include "WaylandClipboardWriteTest.moc"
