#include "settings/SettingsCoding.h"
#include "settings/UploadSettings.h"

#include "support/CapturedOutput.h"
#include "support/FakePlatform.h"
#include "support/TestMain.h"

#include <QObject>

using namespace Qt::StringLiterals;

namespace {

const QString kSuite = u"org.tessery.Tessery.settings"_s;
const QString kKey = u"uploadSettings"_s;
const std::pair<QString, QString> kPasswordItem{u"org.tessery.Tessery"_s, u"serverPassword"_s};

const QStringList kRecordLines{u"   - Hostname: höst"_s, u"   - Protocol: FTPS (FTP with TLS)"_s,
                               u"   - Port: 990"_s};

UploadSettings someSettings()
{
    UploadSettings settings;
    settings.serverType = UploadSettings::ServerType::ftps;
    settings.hostname = u"höst"_s;
    settings.port = 990;
    return settings;
}

QByteArray someRecord()
{
    return SettingsCoding::encode(someSettings());
}

QByteArray recordWith(const QByteArray &member)
{
    return someRecord().chopped(1) + ',' + member + '}';
}

} // namespace

class SettingsStorageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_platform = std::make_unique<FakePlatform>();
    }

    void cleanup() { m_platform.reset(); }

    void firstStartGivesTheDefaultsAndWritesNothing()
    {
        const CapturedOutput output;
        QCOMPARE(UploadSettings::load(), UploadSettings());
        QCOMPARE(output.lines(), QStringList{u"No saved settings found, using defaults"_s});
        QCOMPARE(writes(), 0);
    }

    void storedRecordIsLoaded()
    {
        suite().values[kKey] = someRecord();
        const CapturedOutput output;
        QCOMPARE(UploadSettings::load(), someSettings());
        QCOMPARE(output.lines(), QStringList{u"✅ Successfully loaded settings:"_s} + kRecordLines);
        QCOMPARE(writes(), 0);
    }

    void passwordInTheSuitesRecordIsIgnored()
    {
        suite().values[kKey] = recordWith(R"("password":"old")");
        QCOMPARE(UploadSettings::load(), someSettings());
        QVERIFY(m_platform->fakeSecrets->items.empty());
        QCOMPARE(writes(), 0);
    }

    void suiteThatCannotBeOpenedIsReplacedByTheStandardDomain()
    {
        m_platform->fakePreferences->canOpenNamed = false;
        standard().values[kKey] = someRecord();
        const CapturedOutput output;
        QCOMPARE(UploadSettings::load(), someSettings());
        QCOMPARE(output.lines(), QStringList{u"✅ Successfully loaded settings:"_s} + kRecordLines);

        standard().values.clear();
        someSettings().save();
        QCOMPARE(standard().values.at(kKey), someRecord());
        QVERIFY(m_platform->fakePreferences->named.empty());
    }

    void badRecordGivesTheDefaultsAndOneLine_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("error");
        QTest::newRow("empty") << QByteArray() << u"the data is not valid JSON, at byte 1"_s;
        QTest::newRow("lacks a key")
            << someRecord().replace("\"hostname\":\"höst\",", "") << u"hostname is missing"_s;
        QTest::newRow("another type")
            << someRecord().replace("990", "\"990\"") << u"port is not a whole number of 64 bits"_s;
        QTest::newRow("list") << QByteArray("[]") << u"the data is not a JSON object"_s;
        QTest::newRow("deep") << QByteArray("{\"\":") + QByteArray(513, '[')
                              << u"the data is nested too deeply"_s;
        QTest::newRow("10 MB") << QByteArray(10'000'000, '[') << u"the data is too large"_s;
        QTest::newRow("line breaks")
            << QByteArray("\n\n\"\n") << u"the data is not valid JSON, at byte 4"_s;
        QTest::newRow("password") << recordWith(R"("password":hunter2)")
                                  << u"the data is not valid JSON, at byte %1"_s.arg(
                                         someRecord().size() + 12);
    }

    void badRecordGivesTheDefaultsAndOneLine()
    {
        QFETCH(const QByteArray, json);
        QFETCH(const QString, error);
        suite().values[kKey] = json;
        standard().values[kKey] = someRecord();
        const CapturedOutput output;
        QCOMPARE(UploadSettings::load(), UploadSettings());
        QCOMPARE(output.lines(), QStringList{u"❌ Failed to decode settings: "_s + error});
        QCOMPARE(suite().values.at(kKey), json);
        QCOMPARE(writes(), 0);
    }

    void oldRecordIsMigratedWithItsPassword()
    {
        standard().values[kKey] = recordWith(R"("password":"old sécret")");
        const CapturedOutput output;
        QCOMPARE(UploadSettings::load(), someSettings());
        QCOMPARE(output.lines(),
                 QStringList({u"No saved settings found, using defaults"_s,
                              u"Found settings in standard UserDefaults, migrating..."_s,
                              u"✅ Settings saved successfully:"_s})
                     + kRecordLines);
        QCOMPARE(m_platform->fakeSecrets->items.at(kPasswordItem), "old sécret");
        QCOMPARE(suite().values.at(kKey), someRecord());
        QCOMPARE(standard().values.at(kKey), someRecord());
    }

    void migrationGoesOnWhenTheKeychainRefuses()
    {
        m_platform->fakeSecrets->isWritable = false;
        standard().values[kKey] = recordWith(R"("password":"old")");
        QCOMPARE(UploadSettings::load(), someSettings());
        QCOMPARE(suite().values.at(kKey), someRecord());
    }

    void recordWithoutPasswordIsMigratedAndLeavesTheKeychainAlone_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("none") << someRecord();
        QTest::newRow("number") << recordWith(R"("password":1)");
        QTest::newRow("null") << recordWith(R"("password":null)");
    }

    void recordWithoutPasswordIsMigratedAndLeavesTheKeychainAlone()
    {
        QFETCH(const QByteArray, json);
        m_platform->fakeSecrets->items[kPasswordItem] = "kept";
        standard().values[kKey] = json;
        QCOMPARE(UploadSettings::load(), someSettings());
        QCOMPARE(m_platform->fakeSecrets->items.at(kPasswordItem), "kept");
        QCOMPARE(suite().values.at(kKey), someRecord());
    }

    void oldRecordThatLacksAKeyIsLeftAlone()
    {
        const QByteArray json = recordWith(R"("password":"old")").replace("\"port\":990,", "");
        standard().values[kKey] = json;
        const CapturedOutput output;
        QCOMPARE(UploadSettings::load(), UploadSettings());
        QCOMPARE(output.lines(),
                 QStringList({u"No saved settings found, using defaults"_s,
                              u"Found settings in standard UserDefaults, migrating..."_s}));
        QVERIFY(m_platform->fakeSecrets->items.empty());
        QCOMPARE(standard().values.at(kKey), json);
        QCOMPARE(writes(), 0);
    }

    void savingWritesBothDomains()
    {
        const CapturedOutput output;
        someSettings().save();
        QCOMPARE(suite().values.at(kKey), someRecord());
        QCOMPARE(standard().values.at(kKey), someRecord());
        QCOMPARE(output.lines(), QStringList{u"✅ Settings saved successfully:"_s} + kRecordLines);
        QCOMPARE(UploadSettings::load(), someSettings());
    }

    void failureToSaveIsLoggedAndNothingElse_data()
    {
        QTest::addColumn<QString>("suiteError");
        QTest::addColumn<QString>("standardError");
        QTest::addColumn<int>("writes");
        QTest::newRow("suite") << u"no room"_s << QString() << 0;
        QTest::newRow("standard") << QString() << u"no room"_s << 1;
    }

    void failureToSaveIsLoggedAndNothingElse()
    {
        QFETCH(const QString, suiteError);
        QFETCH(const QString, standardError);
        suite().writeError = suiteError;
        standard().writeError = standardError;
        const CapturedOutput output;
        someSettings().save();
        QCOMPARE(output.lines(), QStringList{u"❌ Failed to save settings: no room"_s});
        QTEST(writes(), "writes");
    }

private:
    FakePreferencesStore::Domain &suite() const
    {
        return m_platform->fakePreferences->named[kSuite];
    }
    FakePreferencesStore::Domain &standard() const { return m_platform->fakePreferences->standard; }
    int writes() const { return suite().writes + standard().writes; }

    std::unique_ptr<FakePlatform> m_platform;
};

TESSERY_TEST_MAIN(QCoreApplication, SettingsStorageTest)

#include "SettingsStorageTest.moc"
