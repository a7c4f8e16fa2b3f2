#include "app/PublicAddress.h"
#include "support/TestMain.h"

#include <QObject>

using namespace Qt::StringLiterals;

class PublicAddressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void joinsWithOneSlash_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("address");

        QTest::newRow("segment") << u"https://x.org/a"_s << u"a.png"_s
                                 << u"https://x.org/a/a.png"_s;
        QTest::newRow("slash") << u"https://x.org/a/"_s << u"a.png"_s << u"https://x.org/a/a.png"_s;
        QTest::newRow("trailing blank")
            << u"https://x.org/a "_s << u"a.png"_s << u"https://x.org/a/a.png"_s;
        QTest::newRow("trailing tab")
            << u"https://x.org/a\t"_s << u"a.png"_s << u"https://x.org/a/a.png"_s;
        QTest::newRow("leading blanks")
            << u" \t https://x.org/a"_s << u"a.png"_s << u"https://x.org/a/a.png"_s;
        QTest::newRow("line feed stays")
            << u"https://x.org/a\n"_s << u"a.png"_s << u"https://x.org/a\n/a.png"_s;
        QTest::newRow("empty") << QString() << u"a.png"_s << u"/a.png"_s;
        QTest::newRow("blanks only") << u"  "_s << u"a.png"_s << u"/a.png"_s;
        QTest::newRow("name with blanks")
            << u"https://x.org"_s << u"my shot 1.png"_s << u"https://x.org/my shot 1.png"_s;
        QTest::newRow("nothing is encoded")
            << u"https://x.org"_s << u"ä%#?.png"_s << u"https://x.org/ä%#?.png"_s;
    }

    void joinsWithOneSlash()
    {
        QFETCH(const QString, base);
        QFETCH(const QString, name);
        QTEST(publicAddress(base, name), "address");
    }
};

TESSERY_TEST_MAIN(QCoreApplication, PublicAddressTest)
#include "PublicAddressTest.moc"
