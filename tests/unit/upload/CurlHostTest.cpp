#include "support/TestMain.h"
#include "upload/CurlHost.h"

using namespace Qt::StringLiterals;

class CurlHostTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void forms_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("inUrl");
        QTest::addColumn<QString>("inNetrc");
        const auto row = [](const char *name, const QString &host, const QString &inUrl,
                            const QString &inNetrc) {
            QTest::newRow(name) << host << inUrl << inNetrc;
        };
        row("name", u"My_server.example"_s, u"My_server.example"_s, u"My_server.example"_s);
        row("name like a number", u"face.de"_s, u"face.de"_s, u"face.de"_s);
        row("version 4", u"127.0.0.1"_s, u"127.0.0.1"_s, u"127.0.0.1"_s);
        row("version 4, short", u"127.1"_s, u"127.1"_s, u"127.0.0.1"_s);
        row("version 4, hexadecimal", u"0x7F000001"_s, u"0x7F000001"_s, u"127.0.0.1"_s);
        row("version 6", u"::1"_s, u"[::1]"_s, u"::1"_s);
        row("version 6 in brackets", u"[::1]"_s, u"[::1]"_s, u"::1"_s);
        row("version 6, long", u"[2001:DB8:0:0::1]"_s, u"[2001:db8::1]"_s, u"2001:db8::1"_s);
        row("version 6 with a zone", u"fe80::1%eth0"_s, u"[fe80::1%25eth0]"_s, u"fe80::1"_s);
        row("version 6 with a zone as in a URL", u"[fe80::1%25eth0]"_s, u"[fe80::1%25eth0]"_s,
            u"fe80::1"_s);
        row("zone 25", u"fe80::1%25"_s, u"[fe80::1%2525]"_s, u"fe80::1"_s);
        row("beyond ASCII", u"Bücher.example"_s, u"xn--bcher-kva.example"_s,
            u"xn--bcher-kva.example"_s);
        row("beyond ASCII, decomposed", u"bu\u0308cher.example"_s, u"xn--bcher-kva.example"_s,
            u"xn--bcher-kva.example"_s);
    }
    void forms()
    {
        QFETCH(QString, host);
        QFETCH(QString, inUrl);
        QFETCH(QString, inNetrc);
        const std::optional<CurlHost> forms = CurlHost::of(host);
        QVERIFY(forms);
        QCOMPARE(forms->inUrl, inUrl);
        QCOMPARE(forms->inNetrc, inNetrc);
    }

    void whatIsNoNameHasNone_data()
    {
        QTest::addColumn<QString>("host");
        QTest::newRow("empty") << u""_s;
        for (const QString &host :
             {u"a b"_s, u"user@h"_s, u"u:pw@h"_s, u"h:21"_s, u"h/x"_s, u"h?x"_s, u"h#x"_s,
              u"{a,b}"_s, u"%41"_s, u"a;b"_s, u"a$b"_s, u"\"a\""_s, u"a\\b"_s, u"[name]"_s,
              u"[::1]x"_s, u"::1%lo]@h/["_s, u"::1%"_s})
            QTest::newRow(host.toUtf8().constData()) << host;
        QTest::newRow("blank") << u"bücher example"_s;
        QTest::newRow("brackets") << u"[bücher]"_s;
        QTest::newRow("too long") << QString(64, u'ü') + u".example"_s;
        QTest::newRow("half a character") << u"b"_s + QChar(0xd83d) + u".example"_s;
    }
    void whatIsNoNameHasNone()
    {
        QFETCH(QString, host);
        QVERIFY(!CurlHost::of(host));
    }
};

TESSERY_TEST_MAIN(QCoreApplication, CurlHostTest)
#include "CurlHostTest.moc"
