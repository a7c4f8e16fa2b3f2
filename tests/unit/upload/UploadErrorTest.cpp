#include "support/TestMain.h"
#include "upload/UploadError.h"

using namespace Qt::StringLiterals;
using Kind = UploadError::Kind;

class UploadErrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void descriptions()
    {
        const struct {
            UploadError error;
            Kind kind;
            QString message;
            QString description;
        } table[] = {
            {UploadError::connectionFailed(u"grün"_s), Kind::connectionFailed, u"grün"_s,
             u"Connection failed: grün"_s},
            {UploadError::uploadFailed(u"a\nb"_s), Kind::uploadFailed, u"a\nb"_s,
             u"Upload failed: a\nb"_s},
            {UploadError::unsupportedProtocol(), Kind::unsupportedProtocol, QString(),
             u"Unsupported protocol"_s},
            {UploadError::authenticationFailed(), Kind::authenticationFailed, QString(),
             u"Authentication failed"_s},
            {UploadError::timeout(), Kind::timeout, QString(), u"Connection timed out"_s},
        };
        for (const auto &row : table) {
            QCOMPARE(row.error.kind(), row.kind);
            QCOMPARE(row.error.message(), row.message);
            QCOMPARE(row.error.errorDescription(), row.description);
            QCOMPARE(QString::fromUtf8(row.error.what()), row.description);
        }
    }

    void otherMessageIsOfTheSameKind()
    {
        QVERIFY(UploadError::uploadFailed(u"a"_s).withMessage(u"b"_s)
                == UploadError::uploadFailed(u"b"_s));
        QVERIFY(UploadError::connectionFailed(u"a"_s).withMessage(u"b"_s)
                == UploadError::connectionFailed(u"b"_s));
        QVERIFY(UploadError::timeout().withMessage(u"b"_s) == UploadError::timeout());
    }

    void equalityIsOfKindAndMessage()
    {
        QVERIFY(UploadError::uploadFailed(u"a"_s) == UploadError::uploadFailed(u"a"_s));
        QVERIFY(UploadError::uploadFailed(u"a"_s) != UploadError::uploadFailed(u"b"_s));
        QVERIFY(UploadError::uploadFailed(u"a"_s) != UploadError::connectionFailed(u"a"_s));
    }
};

TESSERY_TEST_MAIN(QCoreApplication, UploadErrorTest)
#include "UploadErrorTest.moc"
