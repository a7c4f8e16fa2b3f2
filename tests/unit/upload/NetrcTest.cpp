#include "support/TestMain.h"
#include "upload/Netrc.h"

using namespace Qt::StringLiterals;

class NetrcTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void values_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("written");
        const auto plain = [](const QString &value) {
            QTest::newRow(value.toUtf8().constData()) << value << value;
        };
        const auto quoted = [](const QString &value, const QString &written) {
            QTest::newRow(value.toUtf8().constData()) << value << written;
        };
        plain(QString());
        plain(u"pa\\ss"_s);
        plain(u"in\"ner'#"_s);
        plain(u"'quoted'"_s);
        plain(u"$[]{}~!"_s);
        plain(u"-dash"_s);
        quoted(u"a b"_s, u"\"a b\""_s);
        quoted(u" a"_s, u"\" a\""_s);
        quoted(u"a "_s, u"\"a \""_s);
        quoted(u"a\tb"_s, u"\"a\tb\""_s);
        quoted(u"#a"_s, u"\"#a\""_s);
        quoted(u"\"a\""_s, u"\"\\\"a\\\"\""_s);
        quoted(u"a b\\c\"d"_s, u"\"a b\\\\c\\\"d\""_s);
        quoted(u"\\n é"_s, u"\"\\\\n é\""_s);
        quoted(u"é"_s, u"\"é\""_s);
        quoted(u"😀"_s, u"\"😀\""_s);
        quoted(u"a\u007f"_s, u"\"a\u007f\""_s);
    }
    void values()
    {
        QFETCH(QString, value);
        QFETCH(QString, written);
        QCOMPARE(Netrc::contents(u"h"_s, u"me"_s, value),
                 u"machine h\nlogin me\npassword "_s + written);
        QCOMPARE(Netrc::contents(u"h"_s, value, u"pw"_s),
                 u"machine h\nlogin "_s + written + u"\npassword pw"_s);
        QVERIFY(!Netrc::refusal(u"me"_s, value));
    }

    void lineBreaksAreRefused_data()
    {
        QTest::addColumn<QString>("password");
        QTest::newRow("line feed") << u"a\nmachine other"_s;
        QTest::newRow("carriage return") << u"a\r"_s;
        QTest::newRow("NUL") << u"a"_s + QChar() + u"b"_s;
    }
    void lineBreaksAreRefused()
    {
        QFETCH(QString, password);
        QCOMPARE(Netrc::refusal(u"me"_s, password)->errorDescription(),
                 u"Upload failed: The password holds a line break, which FTP cannot send"_s);
    }

    void linesThatCurlWouldPassOverAreRefused()
    {
        const QString longest(4085, u'x');
        QVERIFY(!Netrc::refusal(u"me"_s, longest));
        QCOMPARE(Netrc::refusal(u"me"_s, longest + u'x')->errorDescription(),
                 u"Upload failed: The password is too long for curl"_s);
        QVERIFY(!Netrc::refusal(u"me"_s, u' ' + longest.chopped(3)));
        QVERIFY(Netrc::refusal(u"me"_s, u' ' + longest.chopped(2)));
        QVERIFY(!Netrc::refusal(u"me"_s, QString(2041, u'ü')));
        QVERIFY(Netrc::refusal(u"me"_s, QString(2042, u'ü')));
        QVERIFY(!Netrc::refusal(QString(4088, u'x'), u"pw"_s));
        QCOMPARE(Netrc::refusal(QString(4089, u'x'), u"pw"_s)->errorDescription(),
                 u"Upload failed: The username is too long for curl"_s);
        QVERIFY(Netrc::refusal(u"me"_s, QString(400000, u'x')));
    }
};

TESSERY_TEST_MAIN(QCoreApplication, NetrcTest)
#include "NetrcTest.moc"
