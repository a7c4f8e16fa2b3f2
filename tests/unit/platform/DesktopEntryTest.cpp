#include "platform/linux/DesktopEntry.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray kFile = "# by hand\n"
                         "[Desktop Entry]\n"
                         "Name=Tessery\n"
                         "Name[de]=Tessera\n"
                         "Exec = /usr/bin/tessery \n"
                         "Hidden=true\n"
                         "OnlyShowIn=GNOME;KDE;\n"
                         "\n"
                         "[Desktop Action New]\n"
                         "Exec=/usr/bin/other\n"
                         "Icon=other\n";

} // namespace

class DesktopEntryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void valuesAreThoseOfTheFirstGroup()
    {
        const DesktopEntry entry(kFile);
        QVERIFY(entry.isValid());
        QCOMPARE(entry.value(u"Exec"_s), std::optional(u"/usr/bin/tessery"_s));
        QCOMPARE(entry.value(u"Name"_s), std::optional(u"Tessery"_s));
        QCOMPARE(entry.value(u"Name[de]"_s), std::optional(u"Tessera"_s));
        QCOMPARE(entry.value(u"Icon"_s), std::nullopt);
        QCOMPARE(entry.list(u"OnlyShowIn"_s), QStringList({u"GNOME"_s, u"KDE"_s}));
        QVERIFY(entry.isTrue(u"Hidden"_s));
        QVERIFY(!entry.isTrue(u"Name"_s));
    }

    void textHasNoEscapes()
    {
        const DesktopEntry entry("[Desktop Entry]\nName=\\sa\\tb\\nc\\\\d\\x\n");
        QCOMPARE(entry.text(u"Name"_s), u" a\tb\nc\\d\\x"_s);
    }

    void whatIsNotChangedStaysAsItIs() { QCOMPARE(DesktopEntry(kFile).bytes(), kFile); }

    void valueIsReplacedInItsPlace()
    {
        DesktopEntry entry(kFile);
        entry.setValue(u"Exec"_s, u"/opt/tessery"_s);
        QByteArray expected = kFile;
        expected.replace("Exec = /usr/bin/tessery ", "Exec=/opt/tessery");
        QCOMPARE(entry.bytes(), expected);
    }

    void newKeyGoesToTheEndOfTheGroup()
    {
        DesktopEntry entry(kFile);
        entry.setValue(u"Icon"_s, u"tessery"_s);
        QByteArray expected = kFile;
        expected.replace("GNOME;KDE;\n", "GNOME;KDE;\nIcon=tessery\n");
        QCOMPARE(entry.bytes(), expected);
    }

    void keyIsRemovedFromTheFirstGroupOnly()
    {
        DesktopEntry entry(kFile);
        entry.remove(u"Hidden"_s);
        entry.remove(u"Icon"_s);
        QByteArray expected = kFile;
        expected.replace("Hidden=true\n", "");
        QCOMPARE(entry.bytes(), expected);
    }

    void fileWithoutTheGroupHasNoValues_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no group") << QByteArray("Exec=/usr/bin/tessery\n");
        QTest::newRow("another group") << QByteArray("[Desktop Action X]\nExec=/bin/x\n");
        QTest::newRow("not text") << QByteArray("\x89PNG\r\n\x1a\n\0\0", 10);
    }

    void fileWithoutTheGroupHasNoValues()
    {
        QFETCH(const QByteArray, bytes);
        const DesktopEntry entry(bytes);
        QVERIFY(!entry.isValid());
        QCOMPARE(entry.value(u"Exec"_s), std::nullopt);
    }

    void settingAValueMakesTheGroup()
    {
        DesktopEntry entry;
        entry.setValue(u"Type"_s, u"Application"_s);
        entry.setValue(u"Exec"_s, u"tessery"_s);
        QCOMPARE(entry.bytes(), "[Desktop Entry]\nType=Application\nExec=tessery\n");
    }

    void execOfAProgramIsQuotedAsFarAsNeeded_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("value");
        QTest::newRow("plain") << u"/usr/bin/tessery"_s << u"/usr/bin/tessery"_s;
        QTest::newRow("not ASCII") << u"/home/zoë/tessery"_s << u"/home/zoë/tessery"_s;
        QTest::newRow("blank") << u"/my apps/tessery"_s << u"\"/my apps/tessery\""_s;
        QTest::newRow("single quote") << u"/it's/tessery"_s << u"\"/it's/tessery\""_s;
        QTest::newRow("double quote") << u"/a\"b/tessery"_s << u"\"/a\\\\\"b/tessery\""_s;
        QTest::newRow("dollar") << u"/a$b/tessery"_s << u"\"/a\\\\$b/tessery\""_s;
        QTest::newRow("backtick") << u"/a`b/tessery"_s << u"\"/a\\\\`b/tessery\""_s;
        QTest::newRow("backslash") << u"/a\\b/tessery"_s << u"\"/a\\\\\\\\b/tessery\""_s;
        QTest::newRow("line break") << u"/a\nb/tessery"_s << u"\"/a\\nb/tessery\""_s;
        QTest::newRow("tab") << u"/a\tb/tessery"_s << u"\"/a\\tb/tessery\""_s;
    }

    void execOfAProgramIsQuotedAsFarAsNeeded()
    {
        QFETCH(const QString, program);
        QFETCH(const QString, value);
        QCOMPARE(execValue(program), value);
        QCOMPARE(execArguments(value), QStringList(program));
    }

    void programWithAPercentSignIsStartedThroughEnv()
    {
        QCOMPARE(execValue(u"/100%f/tessery"_s), u"env /100%%f/tessery"_s);
        QCOMPARE(execArguments(execValue(u"/100%f/tessery"_s)),
                 QStringList({u"env"_s, u"/100%f/tessery"_s}));
    }

    void commandLineIsSplit_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("arguments") << u"a  b --c=d"_s << QStringList{u"a"_s, u"b"_s, u"--c=d"_s};
        QTest::newRow("field codes") << u"a %U %i b"_s << QStringList{u"a"_s, u"b"_s};
        QTest::newRow("quoted, empty") << u"a \"\" b"_s << QStringList{u"a"_s, u""_s, u"b"_s};
        QTest::newRow("open quote") << u"a \"b"_s << QStringList();
        QTest::newRow("nothing") << u""_s << QStringList();
    }

    void commandLineIsSplit()
    {
        QFETCH(const QString, value);
        QFETCH(const QStringList, arguments);
        QCOMPARE(execArguments(value), arguments);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, DesktopEntryTest)

#include "DesktopEntryTest.moc"
