#include "support/TestMain.h"
#include "upload/ToolText.h"

using namespace Qt::StringLiterals;

class ToolTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void onlyUtf8IsText_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<bool>("isText");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QByteArray() << true << QString();
        QTest::newRow("ASCII") << QByteArray("a\r\nb") << true << u"a\r\nb"_s;
        QTest::newRow("umlaut") << QByteArray("\xc3\xa4") << true << u"ä"_s;
        QTest::newRow("emoji") << QByteArray("\xf0\x9f\x93\xb8") << true << u"📸"_s;
        QTest::newRow("zero byte") << QByteArray("a\0b", 3) << true << u"a\0b"_s;
        QTest::newRow("Latin-1") << QByteArray("gr\xfc\xdf") << false << QString();
        QTest::newRow("cut off") << QByteArray("a\xf0\x9f") << false << QString();
        QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80") << false << QString();
    }
    void onlyUtf8IsText()
    {
        QFETCH(QByteArray, output);
        QFETCH(bool, isText);
        QFETCH(QString, text);
        const std::optional<QString> decoded = ToolText::decoded(output);
        QCOMPARE(decoded.has_value(), isText);
        QCOMPARE(decoded.value_or(QString()), text);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, ToolTextTest)
#include "ToolTextTest.moc"
