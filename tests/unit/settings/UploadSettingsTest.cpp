#include "settings/UploadSettings.h"

#include "base/AppIdentifier.h"
#include "support/FakePlatform.h"
#include "support/TestMain.h"

#include <QObject>

#include <algorithm>

using namespace Qt::StringLiterals;

using KeyboardShortcut = UploadSettings::KeyboardShortcut;
using KeyModifier = KeyboardShortcut::KeyModifier;

namespace {

UploadSettings filledIn()
{
    UploadSettings settings;
    settings.hostname = u"host"_s;
    settings.username = u"me"_s;
    settings.publicURLBase = u"https://x.org/"_s;
    return settings;
}

template <typename Enum>
QStringList texts()
{
    QStringList result;
    for (const StoredText<Enum> &entry : StoredTexts<Enum>::all) {
        if (entry.value == fromStoredText<Enum>(entry.text)
            && storedText(entry.value) == entry.text)
            result << entry.text.toString();
    }
    return result;
}

} // namespace

class UploadSettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_platform = std::make_unique<FakePlatform>();
    }

    void cleanup() { m_platform.reset(); }

    void defaultsAreTheOnesThatAFirstStartShows()
    {
        const UploadSettings settings;
        QCOMPARE(settings.serverType, UploadSettings::ServerType::sftp);
        QCOMPARE(settings.hostname, QString());
        QCOMPARE(settings.port, 22);
        QCOMPARE(settings.username, QString());
        QCOMPARE(settings.remotePath, u"/"_s);
        QCOMPARE(settings.publicURLBase, QString());
        QCOMPARE(settings.usePassiveMode, true);
        QCOMPARE(settings.allowInsecureCertificates, true);
        QCOMPARE(settings.tlsVersion, UploadSettings::TLSVersion::v1_2);
        QCOMPARE(settings.filenameStyle, UploadSettings::FilenameStyle::original);
        QCOMPARE(settings.addDateToFilename, false);
        QCOMPARE(settings.randomFilenameConfig.length, 8);
        QCOMPARE(settings.randomFilenameConfig.useLowercase, true);
        QCOMPARE(settings.randomFilenameConfig.useUppercase, false);
        QCOMPARE(settings.randomFilenameConfig.useNumbers, true);
        QCOMPARE(settings.randomFilenameConfig.useSymbols, false);
        QCOMPARE(settings.randomFilenameConfig.customSymbols, u"-_"_s);
        QCOMPARE(settings.uploadClipboardShortcut.key, u"u"_s);
        QCOMPARE(settings.uploadClipboardShortcut.displayString(), u"⌘⇧U"_s);
    }

    void enumerationsHaveTheirTextsInDeclarationOrder()
    {
        QCOMPARE(texts<UploadSettings::ServerType>(),
                 QStringList({u"FTP"_s, u"FTPS (FTP with TLS)"_s, u"SFTP"_s}));
        QCOMPARE(texts<UploadSettings::TLSVersion>(),
                 QStringList({u"TLS 1.0"_s, u"TLS 1.1"_s, u"TLS 1.2"_s, u"TLS 1.3"_s, u"Auto"_s}));
        QCOMPARE(texts<UploadSettings::FilenameStyle>(),
                 QStringList({u"Keep Original Name"_s, u"Random String"_s, u"Timestamp"_s}));
        QCOMPARE(texts<KeyModifier>(), QStringList({u"⌘"_s, u"⇧"_s, u"⌥"_s, u"⌃"_s}));
    }

    void otherTextsStandForNothing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("lower case") << u"ftp"_s;
        QTest::newRow("blank before") << u" FTP"_s;
        QTest::newRow("case name") << u"ftps"_s;
        QTest::newRow("empty") << QString();
    }

    void otherTextsStandForNothing()
    {
        QFETCH(const QString, text);
        QVERIFY(!fromStoredText<UploadSettings::ServerType>(text));
    }

    void defaultRecordIsNotValidWhateverTheKeychainHolds()
    {
        QVERIFY(!UploadSettings().isValid());
        storePassword("secret");
        QVERIFY(!UploadSettings().isValid());
    }

    void filledInWithoutPasswordIsNotValid()
    {
        QVERIFY(!filledIn().isValid());
        storePassword("");
        QVERIFY(!filledIn().isValid());
    }

    void filledInWithPasswordOfOneCharacterIsValid()
    {
        storePassword("x");
        QVERIFY(filledIn().isValid());
    }

    void everyOneOfTheFourIsRequired_data()
    {
        QTest::addColumn<QString>("hostname");
        QTest::addColumn<QString>("username");
        QTest::addColumn<QString>("publicURLBase");
        QTest::addColumn<bool>("isValid");
        QTest::addColumn<int>("passwordReads");
        QTest::newRow("all") << u"h"_s << u"u"_s << u"p"_s << true << 1;
        QTest::newRow("no host") << QString() << u"u"_s << u"p"_s << false << 0;
        QTest::newRow("no user") << u"h"_s << QString() << u"p"_s << false << 0;
        QTest::newRow("no public address") << u"h"_s << u"u"_s << QString() << false << 1;
        QTest::newRow("a blank counts") << u" "_s << u" "_s << u" "_s << true << 1;
    }

    void everyOneOfTheFourIsRequired()
    {
        QFETCH(const QString, hostname);
        QFETCH(const QString, username);
        QFETCH(const QString, publicURLBase);
        storePassword("secret");
        UploadSettings settings;
        settings.hostname = hostname;
        settings.username = username;
        settings.publicURLBase = publicURLBase;
        QTEST(settings.isValid(), "isValid");
        QTEST(m_platform->fakeSecrets->reads, "passwordReads");
    }

    void passwordIsReadAnewAtEachCall()
    {
        const UploadSettings settings;
        QCOMPARE(settings.password(), QString());
        storePassword("one");
        QCOMPARE(settings.password(), u"one"_s);
        storePassword("two");
        QCOMPARE(settings.password(), u"two"_s);
    }

    void displayStringKeepsTheStoredOrder_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<std::vector<KeyModifier>>("modifiers");
        QTest::addColumn<QString>("text");
        using List = std::vector<KeyModifier>;
        QTest::newRow("shift first")
            << u"u"_s << List{KeyModifier::shift, KeyModifier::command} << u"⇧⌘U"_s;
        QTest::newRow("control, option")
            << u"s"_s << List{KeyModifier::control, KeyModifier::option} << u"⌃⌥S"_s;
        QTest::newRow("no modifier") << u"5"_s << List{} << u"5"_s;
        QTest::newRow("twice") << u"a"_s << List{KeyModifier::shift, KeyModifier::shift}
                               << u"⇧⇧A"_s;
        QTest::newRow("no key") << QString() << List{KeyModifier::option} << u"⌥"_s;
    }

    void displayStringKeepsTheStoredOrder()
    {
        QFETCH(const QString, key);
        QFETCH(const std::vector<KeyModifier>, modifiers);
        QTEST((KeyboardShortcut{key, modifiers}.displayString()), "text");
    }

    void modifiersSortByTheCodePointsOfTheirSymbols()
    {
        std::vector<KeyModifier> modifiers{KeyModifier::command, KeyModifier::option,
                                           KeyModifier::shift, KeyModifier::control};
        std::sort(modifiers.begin(), modifiers.end());
        QCOMPARE(modifiers,
                 (std::vector<KeyModifier>{KeyModifier::shift, KeyModifier::control,
                                           KeyModifier::command, KeyModifier::option}));
    }

private:
    void storePassword(const QByteArray &password)
    {
        m_platform->fakeSecrets->items[{kAppIdentifier, u"serverPassword"_s}] = password;
    }

    std::unique_ptr<FakePlatform> m_platform;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadSettingsTest)

#include "UploadSettingsTest.moc"
