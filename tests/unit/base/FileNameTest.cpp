#include "base/FileName.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class FileNameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void pathOf_data()
    {
        QTest::addColumn<QByteArray>("address");
        QTest::addColumn<QString>("path");
        QTest::newRow("plain") << QByteArray("file:///a/b.txt") << u"/a/b.txt"_s;
        QTest::newRow("encoded") << QByteArray("file:///a/b%20%23%25%C3%A9.txt")
                                 << u"/a/b #%é.txt"_s;
        QTest::newRow("web") << QByteArray("https://x.org/a/b%20c.txt?d=e#f") << u"/a/b c.txt"_s;
        QTest::newRow("web without a path") << QByteArray("https://x.org") << u""_s;
    }
    void pathOf()
    {
        QFETCH(QByteArray, address);
        QFETCH(QString, path);
        QCOMPARE(FileName::pathOf(QUrl::fromEncoded(address)), path);
    }

    void lastPathComponent_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("component");
        QTest::newRow("file") << u"/a/b.png"_s << u"b.png"_s;
        QTest::newRow("slash at the end") << u"/a/b.png/"_s << u"b.png"_s;
        QTest::newRow("slashes at the end") << u"/a/b//"_s << u"b"_s;
        QTest::newRow("name only") << u"b.png"_s << u"b.png"_s;
        QTest::newRow("one letter") << u"b"_s << u"b"_s;
        QTest::newRow("one letter in a folder") << u"/a/b"_s << u"b"_s;
        QTest::newRow("in the root") << u"/b"_s << u"b"_s;
        QTest::newRow("root") << u"/"_s << u"/"_s;
        QTest::newRow("roots") << u"//"_s << u"/"_s;
        QTest::newRow("empty") << u""_s << u""_s;
        QTest::newRow("backslash") << u"/a/b\\c.png"_s << u"b\\c.png"_s;
    }
    void lastPathComponent()
    {
        QFETCH(QString, path);
        QTEST(FileName::lastPathComponent(path), "component");
    }

    void extension_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("extension");
        QTest::newRow("plain") << u"a.png"_s << u"a"_s << u"png"_s;
        QTest::newRow("case is kept") << u"a.PNG"_s << u"a"_s << u"PNG"_s;
        QTest::newRow("last dot only") << u"a.tar.gz"_s << u"a.tar"_s << u"gz"_s;
        QTest::newRow("none") << u"a"_s << u"a"_s << u""_s;
        QTest::newRow("dot in front") << u".profile"_s << u".profile"_s << u""_s;
        QTest::newRow("dot in front and inside") << u".a.png"_s << u".a"_s << u"png"_s;
        QTest::newRow("dot at the end") << u"a."_s << u"a."_s << u""_s;
        QTest::newRow("dot only") << u"."_s << u"."_s << u""_s;
        QTest::newRow("dots only") << u".."_s << u".."_s << u""_s;
        QTest::newRow("empty") << u""_s << u""_s << u""_s;
        QTest::newRow("blanks") << u"My File (1).PNG"_s << u"My File (1)"_s << u"PNG"_s;
        QTest::newRow("not ASCII")
            << u"Bildschirmfoto ä.püng"_s << u"Bildschirmfoto ä"_s << u"püng"_s;
    }
    void extension()
    {
        QFETCH(QString, name);
        QTEST(FileName::pathExtension(name), "extension");
        QTEST(FileName::deletingPathExtension(name), "base");
    }

    void dotsOfFoldersAreNoExtension()
    {
        QCOMPARE(FileName::pathExtension(u"/a.b/c"_s), QString());
        QCOMPARE(FileName::pathExtension(u"/a.b/c.png"_s), u"png"_s);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, FileNameTest)
#include "FileNameTest.moc"
