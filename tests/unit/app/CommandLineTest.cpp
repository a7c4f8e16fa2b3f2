#include "app/CommandLine.h"

#include "support/TestMain.h"

#include <QObject>

using namespace Qt::StringLiterals;
using Kind = CommandLine::Kind;

class CommandLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void nothingRunsWithoutAnAction() { QCOMPARE(CommandLine::parse({}), CommandLine()); }

    void everyActionIsKnownByItsName()
    {
        for (const RemoteAction action : RemoteActions::all()) {
            const QString name = RemoteActions::nameOf(action);
            QCOMPARE(CommandLine::parse({name}).kind, Kind::Run);
            QVERIFY(CommandLine::parse({name}).action == action);
            QVERIFY(CommandLine::usage().contains(u"\n  "_s + name + u' '));
        }
        QCOMPARE(RemoteActions::all().size(), std::size_t{5});
    }

    void helpAndVersion()
    {
        for (const QString &option : {u"--help"_s, u"-h"_s})
            QCOMPARE(CommandLine::parse({option}).kind, Kind::Help);
        for (const QString &option : {u"--version"_s, u"-v"_s})
            QCOMPARE(CommandLine::parse({option}).kind, Kind::Version);
    }

    void toolkitsOptionsArePassedOver_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("value apart") << QStringList{u"-platform"_s, u"offscreen"_s};
        QTest::newRow("two hyphens") << QStringList{u"--platform"_s, u"xcb"_s};
        QTest::newRow("value joined") << QStringList{u"-style=fusion"_s};
        QTest::newRow("switch") << QStringList{u"-reverse"_s};
        QTest::newRow("value like an action") << QStringList{u"-qwindowtitle"_s, u"settings"_s};
        QTest::newRow("several") << QStringList{u"-display"_s, u":1"_s, u"-sync"_s, u"-style"_s,
                                                u"fusion"_s};
        QTest::newRow("value missing") << QStringList{u"-platform"_s};
    }
    void toolkitsOptionsArePassedOver()
    {
        QFETCH(const QStringList, arguments);
        QCOMPARE(CommandLine::parse(arguments), CommandLine());
        const CommandLine before = CommandLine::parse(QStringList{u"quit"_s} + arguments);
        QVERIFY(before.action == RemoteAction::Quit);
    }

    void actionMayFollowAToolkitsOption()
    {
        const CommandLine line = CommandLine::parse({u"-platform"_s, u"xcb"_s, u"settings"_s});
        QVERIFY(line.action == RemoteAction::Settings);
    }

    void mistakesAreTold_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("mistake");
        QTest::newRow("option") << QStringList{u"--tray"_s} << u"there is no option --tray"_s;
        QTest::newRow("joined") << QStringList{u"--x=1"_s} << u"there is no option --x=1"_s;
        QTest::newRow("hyphen") << QStringList{u"-"_s} << u"there is no option -"_s;
        QTest::newRow("action") << QStringList{u"upload"_s} << u"there is no action upload"_s;
        QTest::newRow("empty") << QStringList{QString()} << u"there is no action "_s;
        QTest::newRow("two") << QStringList{u"settings"_s, u"quit"_s} << u"one action at a time"_s;
    }
    void mistakesAreTold()
    {
        QFETCH(const QStringList, arguments);
        QCOMPARE(CommandLine::parse(arguments).kind, Kind::Mistake);
        QTEST(CommandLine::parse(arguments).mistake, "mistake");
    }
};

TESSERY_TEST_MAIN(QCoreApplication, CommandLineTest)
#include "CommandLineTest.moc"
