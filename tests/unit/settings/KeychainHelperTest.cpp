#include "settings/KeychainHelper.h"

#include "settings/UploadSettings.h"
#include "support/FakePlatform.h"
#include "support/TestMain.h"

#include <QObject>

using namespace Qt::StringLiterals;

namespace {

const std::pair<QString, QString> kItem{u"org.tessery.Tessery"_s, u"serverPassword"_s};

} // namespace

class KeychainHelperTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_platform = std::make_unique<FakePlatform>();
    }

    void cleanup() { m_platform.reset(); }

    void missingItemIsAbsent()
    {
        QCOMPARE(KeychainHelper::loadPassword(), std::nullopt);
        QCOMPARE(UploadSettings().password(), QString());
    }

    void emptyPasswordIsStoredLikeAnyOther()
    {
        QVERIFY(KeychainHelper::savePassword(QString()));
        QCOMPARE(KeychainHelper::loadPassword(), std::optional(QString()));
        QCOMPARE(UploadSettings().password(), QString());
    }

    void passwordIsStoredAsUtf8AndComesBack_data()
    {
        QTest::addColumn<QString>("password");
        QTest::addColumn<QByteArray>("stored");
        QTest::newRow("ascii") << u"secret"_s << QByteArray("secret");
        QTest::newRow("umlaut") << u"Gehäuse"_s << QByteArray("Geh\xc3\xa4use");
        QTest::newRow("emoji") << u"🔑"_s << QByteArray("\xf0\x9f\x94\x91");
        QTest::newRow("blanks") << u" \t\n"_s << QByteArray(" \t\n");
        QTest::newRow("byte order mark") << u"\ufeffx"_s << QByteArray("\xef\xbb\xbfx");
        QTest::newRow("nul inside") << QString::fromLatin1("a\0b", 3) << QByteArray("a\0b", 3);
    }

    void passwordIsStoredAsUtf8AndComesBack()
    {
        QFETCH(const QString, password);
        QVERIFY(KeychainHelper::savePassword(password));
        QTEST(m_platform->fakeSecrets->items.at(kItem), "stored");
        QCOMPARE(KeychainHelper::loadPassword(), std::optional(password));
    }

    void textThatUtf8CannotHoldIsRefused()
    {
        QVERIFY(!KeychainHelper::savePassword(QString(QChar(0xd800))));
        QVERIFY(m_platform->fakeSecrets->items.empty());
    }

    void secretThatIsNotUtf8IsAbsent_data()
    {
        QTest::addColumn<QByteArray>("secret");
        QTest::newRow("stray byte") << QByteArray("a\xff");
        QTest::newRow("cut off") << QByteArray("a\xc3");
        QTest::newRow("too long") << QByteArray("\xc0\xaf");
    }

    void secretThatIsNotUtf8IsAbsent()
    {
        QFETCH(const QByteArray, secret);
        m_platform->fakeSecrets->items[kItem] = secret;
        QCOMPARE(KeychainHelper::loadPassword(), std::nullopt);
    }

    void savingTwiceReplacesTheItem()
    {
        QVERIFY(KeychainHelper::savePassword(u"one"_s));
        QVERIFY(KeychainHelper::savePassword(u"two"_s));
        QCOMPARE(m_platform->fakeSecrets->items.size(), 1U);
        QCOMPARE(KeychainHelper::loadPassword(), std::optional(u"two"_s));
    }

    void refusalOfTheStoreIsReported()
    {
        m_platform->fakeSecrets->isWritable = false;
        QVERIFY(!KeychainHelper::savePassword(u"secret"_s));
    }

private:
    std::unique_ptr<FakePlatform> m_platform;
};

TESSERY_TEST_MAIN(QCoreApplication, KeychainHelperTest)

#include "KeychainHelperTest.moc"
