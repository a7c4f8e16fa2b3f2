#include "base/LoggedName.h"

#include "support/TestMain.h"

#include <QTest>

class LoggedNameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }
    void namesStayAsTheyAreButForControls_data();
    void namesStayAsTheyAreButForControls();
    void invalidNamesAreSpelledInAscii();
};

void LoggedNameTest::namesStayAsTheyAreButForControls_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("logged");
    QTest::newRow("plain") << QByteArray("photo 1'\"\\.png") << QByteArray("photo 1'\"\\.png");
    QTest::newRow("letters beyond ASCII")
        << QByteArray("écran 截屏 \U0001F4F8") << QByteArray("écran 截屏 \U0001F4F8");
    QTest::newRow("decomposed") << QByteArray("e\u0301") << QByteArray("e\u0301");
    QTest::newRow("line break") << QByteArray("a\nb\r") << QByteArray("a\\x0Ab\\x0D");
    QTest::newRow("escape") << QByteArray("\033[2J\177") << QByteArray("\\x1B[2J\\x7F");
    QTest::newRow("U+009B") << QByteArray("a\u009B2J") << QByteArray("a\\xC2\\x9B2J");
    QTest::newRow("U+00A0") << QByteArray("a\u00A0b") << QByteArray("a\u00A0b");
}

void LoggedNameTest::namesStayAsTheyAreButForControls()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, logged);
    QCOMPARE(LoggedName::of(name.toStdString()), logged);
}

void LoggedNameTest::invalidNamesAreSpelledInAscii()
{
    QCOMPARE(LoggedName::ofInvalid("Screenshot \xE9\xFF\n.png"),
             QByteArray("Screenshot \\xE9\\xFF\\x0A.png"));
}

TESSERY_TEST_MAIN(QCoreApplication, LoggedNameTest)
#include "LoggedNameTest.moc"
