#include "platform/linux/x11/X11Connection.h"

#include "support/PrivateDisplay.h"
#include "support/TestMain.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <ctime>
#include <optional>

using namespace Qt::StringLiterals;

class X11ConnectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void thereIsNoneWithoutADisplay_data();
    void thereIsNoneWithoutADisplay();
    void atomIsTheSameForEveryClient();
    void everyScreenHasARoot();
    void refusedRequestIsTold();
    void eventsArriveInOrder();
    void eventReadWhileWaitingForAReplyArrives();
    void replyCallsNoHandler();
    void handlerMayMakeRequests();
    void handlerMayDestroyTheConnection();
    void lossIsToldOnceAndCostsNothing();
    void lossWhileWaitingIsTold();
    void lossHandlerMayDestroyTheConnection();
    void whatItHeldEndsWithIt();

private:
    /// Sends the client itself a message that carries a number.
    void sendMessage(X11Connection &connection, std::uint32_t number) const;
    void noteMessages(X11Connection &connection);

    std::optional<PrivateDisplay> m_display;
    std::unique_ptr<X11Connection> m_connection;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    QList<std::uint32_t> m_received;
};

void X11ConnectionTest::init()
{
    TestSurroundings::failOnWarnings();
    m_display.emplace();
    m_received.clear();
    m_connection = X11Connection::open();
    QVERIFY(m_connection);
    m_window = xcb_generate_id(m_connection->get());
    QVERIFY(m_connection->check(xcb_create_window_checked(
        m_connection->get(), XCB_COPY_FROM_PARENT, m_window, m_connection->root(), 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr)));
    noteMessages(*m_connection);
}

void X11ConnectionTest::cleanup()
{
    m_connection.reset();
    m_display.reset();
}

void X11ConnectionTest::sendMessage(X11Connection &connection, std::uint32_t number) const
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_window;
    message.data.data32[0] = number;
    // Without a mask it goes to the client that has made the window.
    xcb_send_event(connection.get(), 0, m_window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&message));
}

void X11ConnectionTest::noteMessages(X11Connection &connection)
{
    connection.setEventHandler([this](const xcb_generic_event_t &event) {
        if ((event.response_type & 0x7f) == XCB_CLIENT_MESSAGE)
            m_received
                << reinterpret_cast<const xcb_client_message_event_t &>(event).data.data32[0];
    });
}

void X11ConnectionTest::thereIsNoneWithoutADisplay_data()
{
    QTest::addColumn<QByteArray>("display");
    QTest::newRow("unset") << QByteArray();
    QTest::newRow("nobody there") << QByteArray(":65000");
    QTest::newRow("nonsense") << QByteArray("nonsense");
}

void X11ConnectionTest::thereIsNoneWithoutADisplay()
{
    QFETCH(const QByteArray, display);
    if (display.isNull())
        qunsetenv("DISPLAY");
    else
        qputenv("DISPLAY", display);
    QVERIFY(!X11Connection::open());
}

void X11ConnectionTest::atomIsTheSameForEveryClient()
{
    const auto other = X11Connection::open();
    const xcb_atom_t atom = m_connection->atom("_TEST_NAME");
    QVERIFY(atom != XCB_ATOM_NONE);
    QCOMPARE(other->atom("_TEST_NAME"), atom);
    QVERIFY(other->atom("_TEST_NAME_2") != atom);
    QCOMPARE(m_connection->atom("PRIMARY"), xcb_atom_t{XCB_ATOM_PRIMARY});
}

void X11ConnectionTest::everyScreenHasARoot()
{
    QCOMPARE(m_connection->roots(), std::vector{m_connection->root()});
    m_display.reset();
    m_display.emplace(
        QStringList{u"-screen"_s, u"0"_s, u"640x480x24"_s, u"-screen"_s, u"1"_s, u"640x480x24"_s});
    qputenv("DISPLAY", QByteArray(qgetenv("DISPLAY") + ".1"));
    const auto second = X11Connection::open();
    QCOMPARE(second->roots().size(), 2U);
    QCOMPARE(second->root(), second->roots().at(1));
}

void X11ConnectionTest::refusedRequestIsTold()
{
    QVERIFY(!m_connection->check(xcb_map_window_checked(m_connection->get(), 1)));
    QVERIFY(!m_connection->reply(xcb_get_geometry_reply, xcb_get_geometry(m_connection->get(), 1)));
    QVERIFY(!m_connection->isLost());
    QVERIFY(m_connection->check(xcb_map_window_checked(m_connection->get(), m_window)));
}

void X11ConnectionTest::eventsArriveInOrder()
{
    QList<std::uint32_t> expected;
    for (std::uint32_t number = 0; number < 1000; ++number) {
        sendMessage(*m_connection, number);
        expected << number;
    }
    m_connection->flush();
    QTRY_COMPARE(m_received, expected);
}

void X11ConnectionTest::eventReadWhileWaitingForAReplyArrives()
{
    sendMessage(*m_connection, 1);
    QVERIFY(m_connection->atom("_TEST_NAME") != XCB_ATOM_NONE);
    QTRY_COMPARE(m_received, QList<std::uint32_t>{1});
    sendMessage(*m_connection, 2);
    QVERIFY(m_connection->check(xcb_map_window_checked(m_connection->get(), m_window)));
    QTRY_COMPARE(m_received, (QList<std::uint32_t>{1, 2}));
}

void X11ConnectionTest::replyCallsNoHandler()
{
    sendMessage(*m_connection, 1);
    m_connection->atom("_TEST_NAME");
    QVERIFY(m_received.isEmpty());
    QTRY_COMPARE(m_received, QList<std::uint32_t>{1});
}

void X11ConnectionTest::handlerMayMakeRequests()
{
    m_connection->setEventHandler([this](const xcb_generic_event_t &event) {
        const auto number =
            reinterpret_cast<const xcb_client_message_event_t &>(event).data.data32[0];
        m_received << number;
        // One is sent on without waiting, the other read into the queue by the wait.
        if (number == 1 || number == 2)
            sendMessage(*m_connection, number + 1);
        if (number == 2)
            m_connection->atom("_TEST_NAME");
    });
    sendMessage(*m_connection, 1);
    m_connection->flush();
    QTRY_COMPARE(m_received, (QList<std::uint32_t>{1, 2, 3}));
}

void X11ConnectionTest::handlerMayDestroyTheConnection()
{
    int count = 0;
    m_connection->setEventHandler([this, &count](const xcb_generic_event_t &) {
        m_connection.reset();
        ++count;
    });
    sendMessage(*m_connection, 1);
    sendMessage(*m_connection, 2);
    m_connection->flush();
    QTRY_COMPARE(count, 1);
}

void X11ConnectionTest::lossIsToldOnceAndCostsNothing()
{
    int count = 0;
    m_connection->setLostHandler([&count] { ++count; });
    m_display->send(SIGKILL);
    QTRY_COMPARE(count, 1);
    QVERIFY(m_connection->isLost());
    // An event loop at rest; looking at the closed connection again and again would take all of the
    // time.
    QTimer timer;
    QSignalSpy end(&timer, &QTimer::timeout);
    timer.start(500);
    const std::clock_t before = std::clock();
    QVERIFY(end.wait());
    QVERIFY(std::clock() - before < CLOCKS_PER_SEC / 10);
    QCOMPARE(m_connection->atom("_TEST_NAME"), xcb_atom_t{XCB_ATOM_NONE});
    QVERIFY(!m_connection->check(xcb_map_window_checked(m_connection->get(), m_window)));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(count, 1);
}

void X11ConnectionTest::lossWhileWaitingIsTold()
{
    int count = 0;
    m_connection->setLostHandler([&count] { ++count; });
    m_display.reset();
    QCOMPARE(m_connection->atom("_TEST_NAME"), xcb_atom_t{XCB_ATOM_NONE});
    QCOMPARE(count, 0);
    QTRY_COMPARE(count, 1);
}

void X11ConnectionTest::lossHandlerMayDestroyTheConnection()
{
    m_connection->setLostHandler([this] { m_connection.reset(); });
    m_display->send(SIGKILL);
    QTRY_VERIFY(!m_connection);
}

void X11ConnectionTest::whatItHeldEndsWithIt()
{
    const auto other = X11Connection::open();
    m_connection.reset();
    QTRY_VERIFY(!other->check(xcb_map_window_checked(other->get(), m_window)));
}

TESSERY_TEST_MAIN(QCoreApplication, X11ConnectionTest)
#include "X11ConnectionTest.moc"
