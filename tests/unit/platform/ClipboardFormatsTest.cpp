#include "platform/linux/ClipboardFormats.h"
#include "support/TestMain.h"

#include <QSysInfo>

using namespace Qt::StringLiterals;

class ClipboardFormatsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void onlySecretSaysSecret()
    {
        QVERIFY(ClipboardFormats::saysSecret("secret"));
        QVERIFY(ClipboardFormats::saysSecret("secret\n"));
        QVERIFY(!ClipboardFormats::saysSecret("public"));
        QVERIFY(!ClipboardFormats::saysSecret(""));
    }

    void addressTypeIsTheBestOnOffer_data()
    {
        QTest::addColumn<QStringList>("offered");
        QTest::addColumn<QString>("type");
        const QString gnome = u"x-special/gnome-copied-files"_s;
        const QString list = u"text/uri-list"_s;
        QTest::newRow("nothing") << QStringList() << QString();
        QTest::newRow("text") << QStringList({u"text/plain"_s, u"UTF8_STRING"_s}) << QString();
        QTest::newRow("list") << QStringList({u"text/plain"_s, list}) << list;
        QTest::newRow("gnome alone") << QStringList({u"TARGETS"_s, gnome}) << gnome;
        QTest::newRow("gnome and list") << QStringList({gnome, list}) << list;
        QTest::newRow("kde, cut") << QStringList({u"application/x-kde-cutselection"_s, list})
                                  << list;
        QTest::newRow("mate") << QStringList(u"x-special/mate-copied-files"_s)
                              << u"x-special/mate-copied-files"_s;
    }
    void addressTypeIsTheBestOnOffer()
    {
        QFETCH(QStringList, offered);
        QTEST(ClipboardFormats::addressType(offered), "type");
    }

    void addressesAreReadFromTheirLines_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QStringList>("paths");
        const QString list = u"text/uri-list"_s;
        const QString gnome = u"x-special/gnome-copied-files"_s;
        QTest::newRow("one") << list << QByteArray("file:///a/b.txt") << QStringList(u"/a/b.txt"_s);
        QTest::newRow("lines") << list << QByteArray("file:///a\r\nfile:///b\r\n")
                               << QStringList({u"/a"_s, u"/b"_s});
        QTest::newRow("comments") << list << QByteArray("#file:///a\n\nfile:///b\n")
                                  << QStringList(u"/b"_s);
        QTest::newRow("encoded") << list
                                 << QByteArray("file:///a%20b%23c%25d%3F%C3%A9%E6%97%A5.png")
                                 << QStringList(u"/a b#c%d?é日.png"_s);
        QTest::newRow("not encoded")
            << list << QByteArray("file:///a b é.png") << QStringList(u"/a b é.png"_s);
        QTest::newRow("localhost")
            << list << QByteArray("file://localhost/a") << QStringList(u"/a"_s);
        QTest::newRow("this host")
            << list << "file://" + QSysInfo::machineHostName().toUtf8() + "/a"
            << QStringList(u"/a"_s);
        QTest::newRow("another host")
            << list << QByteArray("file://elsewhere/a") << QStringList(u"//elsewhere/a"_s);
        QTest::newRow("gnome, copied")
            << gnome << QByteArray("copy\nfile:///a\nfile:///b") << QStringList({u"/a"_s, u"/b"_s});
        QTest::newRow("gnome, cut")
            << gnome << QByteArray("cut\nfile:///a%20b") << QStringList(u"/a b"_s);
        QTest::newRow("gnome, empty") << gnome << QByteArray() << QStringList();
        QTest::newRow("empty") << list << QByteArray() << QStringList();
        QTest::newRow("no address") << list << QByteArray("just words\n/a/path\n") << QStringList();
    }
    void addressesAreReadFromTheirLines()
    {
        QFETCH(QString, type);
        QFETCH(QByteArray, data);
        QStringList paths;
        for (const QUrl &address : ClipboardFormats::addresses(type, data))
            paths << address.toLocalFile();
        QTEST(paths, "paths");
    }

    void webAddressStaysOne()
    {
        const QByteArray address = "https://x.org/a%20b?c=d#e";
        QCOMPARE(ClipboardFormats::addresses(u"text/uri-list"_s, address),
                 QList<QUrl>{QUrl::fromEncoded(address)});
    }

    void textTypeIsTheBestOnOffer_data()
    {
        QTest::addColumn<QStringList>("offered");
        QTest::addColumn<QString>("type");
        QTest::newRow("nothing") << QStringList() << QString();
        QTest::newRow("image") << QStringList({u"TARGETS"_s, u"image/png"_s}) << QString();
        QTest::newRow("html only") << QStringList(u"text/html"_s) << QString();
        QTest::newRow("all") << QStringList({u"STRING"_s, u"text/plain"_s, u"UTF8_STRING"_s})
                             << u"UTF8_STRING"_s;
        QTest::newRow("the one that nobody changes")
            << QStringList({u"text/plain;charset=utf-8"_s, u"UTF8_STRING"_s}) << u"UTF8_STRING"_s;
        QTest::newRow("with charset, as spelt")
            << QStringList({u"text/plain"_s, u"text/plain;charset=UTF-8"_s})
            << u"text/plain;charset=UTF-8"_s;
        QTest::newRow("another charset")
            << QStringList({u"text/plain"_s, u"text/plain;charset=utf-16"_s})
            << u"text/plain;charset=utf-16"_s;
        QTest::newRow("plain") << QStringList({u"STRING"_s, u"text/plain"_s}) << u"text/plain"_s;
        QTest::newRow("old") << QStringList({u"COMPOUND_TEXT"_s, u"STRING"_s}) << u"STRING"_s;
    }
    void textTypeIsTheBestOnOffer()
    {
        QFETCH(QStringList, offered);
        QTEST(ClipboardFormats::textType(offered), "type");
    }

    void textIsDecodedAsItIs_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("text");
        const QString utf8 = u"UTF8_STRING"_s;
        QTest::newRow("line ends")
            << utf8 << QByteArray("a\r\nb\nc\rd\n\n") << u"a\r\nb\nc\rd\n\n"_s;
        QTest::newRow("control characters")
            << utf8 << QByteArray("\x01\x1b[0m\t\x7f") << u"\u0001\u001b[0m\t\u007f"_s;
        QTest::newRow("beyond the basic plane")
            << utf8 << QByteArray("\xf0\x9f\x98\x80") << u"\U0001F600"_s;
        QTest::newRow("byte order mark") << utf8 << QByteArray("\xef\xbb\xbfx") << u"\ufeffx"_s;
        QTest::newRow("Latin-1") << u"STRING"_s << QByteArray("caf\xe9") << u"café"_s;
        QTest::newRow("plain, UTF-8") << u"text/plain"_s << QByteArray("caf\xc3\xa9") << u"café"_s;
        QTest::newRow("plain, older") << u"text/plain"_s << QByteArray("caf\xe9") << u"café"_s;
        QTest::newRow("UTF-16") << u"text/plain;charset=utf-16"_s
                                << QByteArray("\xff\xfe"
                                              "a\0b\0",
                                              6)
                                << u"ab"_s;
        QTest::newRow("ISO 8859-1")
            << u"text/plain;charset=iso-8859-1"_s << QByteArray("caf\xe9") << u"café"_s;
        QTest::newRow("empty") << utf8 << QByteArray() << QString();
    }
    void textIsDecodedAsItIs()
    {
        QFETCH(QString, type);
        QFETCH(QByteArray, data);
        QTEST(ClipboardFormats::text(type, data), "text");
    }

    void longTextComesWhole()
    {
        const QString text = u"日本 text\n"_s.repeated(1'000'000);
        QCOMPARE(ClipboardFormats::text(u"UTF8_STRING"_s, text.toUtf8()), text);
    }

    void imageTypeIsTheBestOnOffer_data()
    {
        QTest::addColumn<QStringList>("offered");
        QTest::addColumn<QString>("type");
        QTest::newRow("nothing") << QStringList() << QString();
        QTest::newRow("text") << QStringList(u"text/plain"_s) << QString();
        QTest::newRow("PNG first")
            << QStringList({u"image/bmp"_s, u"image/jpeg"_s, u"image/png"_s}) << u"image/png"_s;
        QTest::newRow("without loss first")
            << QStringList({u"image/jpeg"_s, u"image/bmp"_s}) << u"image/bmp"_s;
        QTest::newRow("JPEG") << QStringList({u"TARGETS"_s, u"image/jpeg"_s}) << u"image/jpeg"_s;
        QTest::newRow("bitmap under its other names")
            << QStringList({u"image/x-MS-bmp"_s, u"image/jpeg"_s}) << u"image/x-MS-bmp"_s;
        QTest::newRow("not readable") << QStringList(u"image/x-unknown"_s) << QString();
        QTest::newRow("TIFF without its plugin")
            << QStringList({u"image/tiff"_s, u"image/jpeg"_s}) << u"image/jpeg"_s;
    }
    void imageTypeIsTheBestOnOffer()
    {
        QFETCH(QStringList, offered);
        const QList<QByteArray> readable = {"image/png", "image/jpeg", "image/bmp",
                                            "application/pdf"};
        QTEST(ClipboardFormats::imageType(offered, readable), "type");
    }
};

TESSERY_TEST_MAIN(QCoreApplication, ClipboardFormatsTest)
#include "ClipboardFormatsTest.moc"
