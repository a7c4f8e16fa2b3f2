#include "support/TestMain.h"
#include "upload/SecretMask.h"

using namespace Qt::StringLiterals;

class SecretMaskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void passwordsInAddressesAreMasked_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("masked");
        const auto row = [](const char *name, const QString &text, const QString &masked) {
            QTest::newRow(name) << text << masked;
        };
        row("none", u"* Connected to ftp://h:21/a@b\n"_s, u"* Connected to ftp://h:21/a@b\n"_s);
        row("user alone", u"ftp://me@h/"_s, u"ftp://me@h/"_s);
        row("what curl sends to an HTTP proxy",
            u"> PUT ftp://me:p%2fw@h:21/a@b.png HTTP/1.1\r\n< 1\r\n"_s,
            u"> PUT ftp://me:********@h:21/a@b.png HTTP/1.1\r\n< 1\r\n"_s);
        row("with an at sign", u"x http://me:p@w@h/ y"_s, u"x http://me:********@h/ y"_s);
        row("empty", u"http://me:@h/"_s, u"http://me:********@h/"_s);
        row("two", u"a://b:c@d/ e://f:g@h/"_s, u"a://b:********@d/ e://f:********@h/"_s);
        row("proxy",
            u"* Uses proxy env variable all_proxy == 'http://me:p w/'@@h:3128'\n* Trying\n"_s,
            u"* Uses proxy env variable all_proxy == 'http://me:********@h:3128'\n* Trying\n"_s);
        row("proxy with an odd user",
            u"* Uses proxy env variable all_proxy == 'socks5h://a b/'dom@u:pw@h:1'\n"_s,
            u"* Uses proxy env variable all_proxy == 'socks5h://a b/'dom@u:********@h:1'\n"_s);
        row("proxy without a scheme", u"* Unsupported proxy syntax in 'me:p@ss@h:3128'\n"_s,
            u"* Unsupported proxy syntax in 'me:********@h:3128'\n"_s);
        row("proxy without a password",
            u"* Uses proxy env variable all_proxy == 'http://h:3128'\n* a@b\n"_s,
            u"* Uses proxy env variable all_proxy == 'http://h:3128'\n* a@b\n"_s);
    }
    void passwordsInAddressesAreMasked()
    {
        QFETCH(QString, text);
        QTEST(SecretMask(u"me"_s, QString()).masked(text), "masked");
    }

    void thePasswordIsMaskedInEveryForm_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("masked");
        const QString password = u"s/é cr{t"_s;
        QTest::newRow("as it is") << QString(u"a "_s + password + password + u" b"_s)
                                  << u"a **************** b"_s;
        QTest::newRow("percent-encoded") << u"a s%2F%C3%A9%20cr%7Bt b"_s << u"a ******** b"_s;
        QTest::newRow("percent-encoded in lower case")
            << u"a s%2f%c3%a9%20cr%7bt b"_s << u"a ******** b"_s;
        QTest::newRow("with the user, in base64") << QString(
            u"Basic "_s + QString::fromLatin1(QString(u"me:"_s + password).toUtf8().toBase64())
            + u'\n') << u"Basic ********\n"_s;
        QTest::newRow("no form of it") << u"a s/é cr[t b"_s << u"a s/é cr[t b"_s;
    }
    void thePasswordIsMaskedInEveryForm()
    {
        QFETCH(QString, text);
        QTEST(SecretMask(u"me"_s, u"s/é cr{t"_s).masked(text), "masked");
    }

    void passwordWithAnAddressInItIsMaskedWhole()
    {
        const SecretMask mask(u"me"_s, u"s3cr3t://u:p@tail"_s);
        QCOMPARE(mask.masked(u"a s3cr3t://u:p@tail b x://y:z@h"_s),
                 u"a ******** b x://y:********@h"_s);
    }

    void errorsKeepTheirKind()
    {
        const SecretMask mask(u"me"_s, u"secret"_s);
        QVERIFY(mask.masked(UploadError::uploadFailed(u"a secret"_s))
                == UploadError::uploadFailed(u"a ********"_s));
        QVERIFY(mask.masked(UploadError::connectionFailed(u"secret"_s))
                == UploadError::connectionFailed(u"********"_s));
        QVERIFY(mask.masked(UploadError::timeout()) == UploadError::timeout());
        QVERIFY(mask.masked(UploadError::authenticationFailed())
                == UploadError::authenticationFailed());
    }
};

TESSERY_TEST_MAIN(QCoreApplication, SecretMaskTest)
#include "SecretMaskTest.moc"
