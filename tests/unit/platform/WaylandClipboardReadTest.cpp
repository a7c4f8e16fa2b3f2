#include "platform/linux/wayland/WaylandPasteboard.h"
#include "support/CapturedOutput.h"
#include "support/FakeCompositor.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QGuiApplication>

#include <memory>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Protocol = FakeCompositor::Protocol;

Q_DECLARE_METATYPE(FakeCompositor::Protocol)

namespace {

const QString kNoAccess = u"⚠️ The compositor gives no access to the clipboard"_s;

} // namespace

class WaylandClipboardReadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_compositor.emplace(QList{Protocol::Wlr});
        m_fds.clear();
        m_asked.clear();
    }
    void cleanup()
    {
        m_fds.clear();
        QTRY_COMPARE(m_compositor ? m_compositor->clients() : 0, 0);
        m_compositor.reset();
    }

    void everyKindIsRead_data()
    {
        QTest::addColumn<QList<Protocol>>("offered");
        QTest::addColumn<Protocol>("used");
        QTest::newRow("wlr") << QList{Protocol::Wlr} << Protocol::Wlr;
        QTest::newRow("ext") << QList{Protocol::Ext} << Protocol::Ext;
        QTest::newRow("both") << QList{Protocol::Wlr, Protocol::Ext} << Protocol::Ext;
    }
    void everyKindIsRead()
    {
        QFETCH(const QList<Protocol>, offered);
        m_compositor.reset();
        m_compositor.emplace(offered);
        m_compositor->copy(
            {u"text/uri-list"_s, u"UTF8_STRING"_s, u"image/png"_s},
            [this](const QString &type, UniqueFd fd) {
                m_asked << type;
                const QByteArray content = type == u"text/uri-list"_s ? "file:///a\r\n"
                    : type == u"UTF8_STRING"_s                        ? "wörds"
                                                                      : "pixels";
                QCOMPARE(::write(fd.get(), content.constData(), std::size_t(content.size())),
                         content.size());
            });
        const auto content = m_pasteboard.content();
        QCOMPARE(QCoro::waitFor(content->addresses()), QList<QUrl>{QUrl(u"file:///a"_s)});
        QCOMPARE(QCoro::waitFor(content->text()), u"wörds"_s);
        QCOMPARE(QCoro::waitFor(content->image()), QByteArray("pixels"));
        QCOMPARE(m_asked, QStringList({u"text/uri-list"_s, u"UTF8_STRING"_s, u"image/png"_s}));
        QFETCH(const Protocol, used);
        QCOMPARE(m_compositor->bound, QList{used});
    }

    void emptyClipboardIsEmpty()
    {
        const auto content = m_pasteboard.content();
        QVERIFY(isEmpty(*content));
    }

    void nothingIsReadWithoutAWay_data()
    {
        QTest::addColumn<QList<Protocol>>("offered");
        QTest::addColumn<bool>("hasSeat");
        QTest::newRow("not shared") << QList<Protocol>{} << true;
        QTest::newRow("no seat") << QList{Protocol::Wlr} << false;
    }
    void nothingIsReadWithoutAWay()
    {
        QFETCH(const QList<Protocol>, offered);
        QFETCH(const bool, hasSeat);
        m_compositor.reset();
        m_compositor.emplace(offered, hasSeat);
        m_compositor->copyText("words");
        CapturedOutput output;
        const auto content = m_pasteboard.content();
        QVERIFY(isEmpty(*content));
        QCOMPARE(output.lines(), QStringList(kNoAccess));
    }

    void nothingIsReadWithoutACompositor()
    {
        m_compositor.reset();
        CapturedOutput output;
        const auto content = m_pasteboard.content();
        QVERIFY(isEmpty(*content));
        QCOMPARE(output.lines(), QStringList(kNoAccess));
    }

    void largeContentIsReadWhole()
    {
        const QByteArray large = QByteArray(10 * 1024 * 1024, 'x') + "end";
        PipeWriterList writers;
        m_compositor->copy({u"UTF8_STRING"_s}, [&](const QString &, UniqueFd fd) {
            writers.push_back(
                std::make_unique<PipeWriter>(std::move(fd), large, 10s, [&] { writers.clear(); }));
        });
        const auto content = m_pasteboard.content();
        QVERIFY(QCoro::waitFor(content->text()).toUtf8() == large);
        QVERIFY(writers.empty());
    }

    void silentOwnerIsGivenUp()
    {
        m_compositor->copy({u"UTF8_STRING"_s, u"image/png"_s}, keepAll());
        CapturedOutput output;
        QElapsedTimer time;
        time.start();
        const auto content = m_pasteboard.content();
        QVERIFY(isEmpty(*content));
        QVERIFY2(time.elapsed() >= 1900, "two seconds without an answer");
        QCOMPARE(m_asked, QStringList(u"UTF8_STRING"_s));
        QCOMPARE(output.lines(),
                 QStringList(u"⚠️ The program that owns the clipboard does not answer"_s));
    }

    void slowOwnerIsWaitedFor()
    {
        QTimer pace;
        int pieces = 0;
        connect(&pace, &QTimer::timeout, this, [&] {
            QCOMPARE(::write(m_fds.front().get(), "piece", 5), 5);
            if (++pieces == 4) {
                pace.stop();
                m_fds.clear();
            }
        });
        m_compositor->copy({u"UTF8_STRING"_s}, [&](const QString &, UniqueFd fd) {
            m_fds.push_back(std::move(fd));
            pace.start(700); // All pieces together take longer than one may.
        });
        const auto content = m_pasteboard.content();
        QCOMPARE(QCoro::waitFor(content->text()), u"piecepiecepiecepiece"_s);
    }

    void secretIsLeftAlone()
    {
        m_compositor->copy({u"UTF8_STRING"_s, u"x-kde-passwordManagerHint"_s},
                           [this](const QString &type, UniqueFd fd) {
                               m_asked << type;
                               QCOMPARE(::write(fd.get(), "secret", 6), 6);
                           });
        const auto content = m_pasteboard.content();
        QVERIFY(isEmpty(*content));
        QCOMPARE(m_asked, QStringList(u"x-kde-passwordManagerHint"_s));
    }

    void changeWhileReadingEndsIt()
    {
        m_compositor->copy({u"UTF8_STRING"_s}, [this](const QString &, UniqueFd fd) {
            m_fds.push_back(std::move(fd));
            QTimer::singleShot(0, this, [this] { m_compositor->copyText("of the new owner"); });
        });
        QElapsedTimer time;
        time.start();
        const auto content = m_pasteboard.content();
        QCOMPARE(QCoro::waitFor(content->text()), QString());
        QVERIFY2(time.elapsed() < 1500, "it does not wait for the former owner");
    }

    void newOwnerIsNotAskedForWhatTheFormerOneOffered_data()
    {
        QTest::addColumn<bool>("isKnown");
        QTest::newRow("the change is not known yet") << false;
        QTest::newRow("the change is known") << true;
    }
    void newOwnerIsNotAskedForWhatTheFormerOneOffered()
    {
        m_compositor->copy({u"UTF8_STRING"_s}, keepAll());
        const auto content = m_pasteboard.content();
        QCOMPARE(QCoro::waitFor(content->addresses()), QList<QUrl>()); // The types are known.
        m_compositor->copy({u"UTF8_STRING"_s}, keepAll());
        QFETCH(const bool, isKnown);
        if (isKnown) { // Whoever asks later has been told, and so have we.
            const auto later = m_pasteboard.content();
            QCOMPARE(QCoro::waitFor(later->addresses()), QList<QUrl>());
        }
        QCOMPARE(QCoro::waitFor(content->text()), QString());
        QCOMPARE(m_asked, QStringList());
    }

    void seatThatGoesEndsIt()
    {
        m_compositor->copy({u"UTF8_STRING"_s}, [this](const QString &, UniqueFd fd) {
            m_fds.push_back(std::move(fd));
            QTimer::singleShot(0, this, [this] { m_compositor->removeSeat(); });
        });
        QElapsedTimer time;
        time.start();
        const auto content = m_pasteboard.content();
        QVERIFY(isEmpty(*content));
        QVERIFY2(time.elapsed() < 1500, "nobody is waited for who is gone");
    }

    void compositorThatGoesEndsIt()
    {
        m_compositor->copy({u"UTF8_STRING"_s}, [this](const QString &, UniqueFd fd) {
            m_fds.push_back(std::move(fd));
            QTimer::singleShot(0, this, [this] { m_compositor.reset(); });
        });
        QElapsedTimer time;
        time.start();
        const auto content = m_pasteboard.content();
        QVERIFY(isEmpty(*content));
        QVERIFY2(time.elapsed() < 1500, "nobody is waited for who is gone");
    }

    void frozenCompositorIsGivenUpWithoutBlocking()
    {
        m_compositor->freeze(true);
        int ticks = 0;
        QTimer ticking;
        connect(&ticking, &QTimer::timeout, this, [&ticks] { ++ticks; });
        ticking.start(100);
        const auto content = m_pasteboard.content();
        QVERIFY(isEmpty(*content));
        QVERIFY2(ticks > 5, "the event loop went on");
        m_compositor->freeze(false);
    }

private:
    using PipeWriterList = std::vector<std::unique_ptr<PipeWriter>>;

    /// An owner that never writes.
    FakeCompositor::OnReceive keepAll()
    {
        return [this](const QString &type, UniqueFd fd) {
            m_asked << type;
            m_fds.push_back(std::move(fd));
        };
    }

    static bool isEmpty(PasteboardContent &content)
    {
        return QCoro::waitFor(content.addresses()).isEmpty()
            && QCoro::waitFor(content.text()).isEmpty() && !QCoro::waitFor(content.image());
    }

    std::optional<FakeCompositor> m_compositor;
    WaylandPasteboard m_pasteboard;
    std::vector<UniqueFd> m_fds; ///< Of those who wait for an answer.
    QStringList m_asked;
};

TESSERY_TEST_MAIN(QGuiApplication, WaylandClipboardReadTest)
#include "WaylandClipboardReadTest.moc"
