#include "platform/linux/WindowSystem.h"

#include "platform/linux/WindowSystemChoice.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <QFile>

#include <array>

using namespace Qt::StringLiterals;

class WindowSystemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        qunsetenv("QT_QPA_PLATFORM");
        qunsetenv("WAYLAND_DISPLAY");
        qunsetenv("DISPLAY");
    }

    void choice_data()
    {
        QTest::addColumn<bool>("isSet");
        QTest::addColumn<bool>("isWayland");
        QTest::addColumn<bool>("offersDataControl");
        QTest::addColumn<bool>("hasPlugin");
        QTest::addColumn<bool>("hasXDisplay");
        QTest::addColumn<QByteArray>("platform");
        QTest::addColumn<QString>("reason");
        const QByteArray none;
        QTest::newRow("X11") << false << false << false << false << true << none << QString();
        QTest::newRow("no display")
            << false << false << false << false << false << none << QString();
        QTest::newRow("X11, set") << true << false << false << false << true << none << QString();
        QTest::newRow("Wayland, set")
            << true << true << true << true << true << none << u"as the user has set it"_s;
        QTest::newRow("Wayland without clipboard, set")
            << true << true << false << true << true << none << u"as the user has set it"_s;
        QTest::newRow("data-control")
            << false << true << true << true << true << QByteArray("wayland;xcb")
            << u"Wayland, whose compositor shares its clipboard"_s;
        QTest::newRow("data-control, no X display")
            << false << true << true << true << false << QByteArray("wayland;xcb")
            << u"Wayland, whose compositor shares its clipboard"_s;
        QTest::newRow("data-control, no plugin")
            << false << true << true << false << true << QByteArray("xcb")
            << u"X11, the toolkit has no plugin for Wayland"_s;
        QTest::newRow("data-control, neither plugin nor X display")
            << false << true << true << false << false << none
            << u"the toolkit's choice, it has no plugin for Wayland and there is no X display"_s;
        QTest::newRow("no data-control")
            << false << true << false << true << true << QByteArray("xcb;wayland")
            << u"X11, the Wayland compositor does not share its clipboard"_s;
        QTest::newRow("no data-control, no X display")
            << false << true << false << true << false << none
            << u"the toolkit's choice, the compositor does not share its clipboard and there is "
               "no X display"_s;
    }
    void choice()
    {
        QFETCH(bool, isSet);
        QFETCH(bool, isWayland);
        QFETCH(bool, offersDataControl);
        QFETCH(bool, hasPlugin);
        QFETCH(bool, hasXDisplay);
        const WindowSystemChoice choice =
            chooseWindowSystem({.isWindowSystemSet = isSet,
                                .isWaylandSession = isWayland,
                                .offersDataControl = offersDataControl,
                                .hasWaylandPlugin = hasPlugin,
                                .hasXDisplay = [hasXDisplay] {
                                    return hasXDisplay;
                                }});
        QTEST(choice.platform, "platform");
        QTEST(choice.reason, "reason");
    }

    void xDisplayIsLookedForOnlyWhereItMatters()
    {
        int looks = 0;
        Surroundings surroundings{.isWindowSystemSet = false,
                                  .isWaylandSession = true,
                                  .offersDataControl = true,
                                  .hasWaylandPlugin = true,
                                  .hasXDisplay = [&looks] {
                                      return ++looks > 0;
                                  }};
        chooseWindowSystem(surroundings);
        QCOMPARE(looks, 0);
        surroundings.offersDataControl = false;
        chooseWindowSystem(surroundings);
        QCOMPARE(looks, 1);
    }

    void userMaySetItOnTheCommandLine_data()
    {
        QTest::addColumn<QByteArray>("argument");
        QTest::addColumn<bool>("isSet");
        QTest::newRow("one dash") << QByteArray("-platform") << true;
        QTest::newRow("two dashes") << QByteArray("--platform") << true;
        QTest::newRow("another option") << QByteArray("-platformtheme") << false;
        QTest::newRow("a word") << QByteArray("platform") << false;
    }
    void userMaySetItOnTheCommandLine()
    {
        QFETCH(QByteArray, argument);
        QByteArray program = "tessery";
        QByteArray value = "xcb";
        std::array arguments = {program.data(), argument.data(), value.data()};
        QTEST(Surroundings::look(arguments.size(), arguments.data()).isWindowSystemSet, "isSet");
    }

    void userMaySetItInTheEnvironment()
    {
        QVERIFY(!Surroundings::look(0, nullptr).isWindowSystemSet);
        qputenv("QT_QPA_PLATFORM", "");
        QVERIFY(!Surroundings::look(0, nullptr).isWindowSystemSet);
        qputenv("QT_QPA_PLATFORM", "xcb");
        QVERIFY(Surroundings::look(0, nullptr).isWindowSystemSet);
    }

    void nothingIsThereWhereNobodyListens_data()
    {
        QTest::addColumn<QByteArray>("display");
        QTest::newRow("unset") << QByteArray();
        QTest::newRow("no socket") << QByteArray("wayland-7");
        QTest::newRow("no compositor") << QByteArray("stale");
        QTest::newRow("no such path") << QByteArray("/nonexistent/wayland-0");
        QTest::newRow("too long") << QByteArray(500, 'x');
    }
    void nothingIsThereWhereNobodyListens()
    {
        QFETCH(const QByteArray, display);
        QFile stale(qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/stale"_s);
        QVERIFY(stale.open(QIODevice::WriteOnly));
        qputenv("WAYLAND_DISPLAY", display);
        qputenv("DISPLAY", ":65000");
        const Surroundings found = Surroundings::look(0, nullptr);
        QVERIFY(!found.isWaylandSession);
        QVERIFY(!found.offersDataControl);
        QVERIFY(!found.hasXDisplay());
    }

    void argumentsStayAsTheyAreWithoutAChoice()
    {
        QByteArray program = "tessery";
        std::array arguments = {program.data()};
        CapturedOutput output;
        WindowSystem windowSystem(arguments.size(), arguments.data());
        QCOMPARE(windowSystem.argumentCount(), 1);
        QCOMPARE(windowSystem.arguments()[0], program.data());
        QCOMPARE(windowSystem.arguments()[1], nullptr);
        QVERIFY(output.bytes().isEmpty());
    }
};

TESSERY_TEST_MAIN(QCoreApplication, WindowSystemTest)
#include "WindowSystemTest.moc"
