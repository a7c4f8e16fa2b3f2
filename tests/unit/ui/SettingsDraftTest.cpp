#include "ui/settings/SettingsDraft.h"

#include "support/TestMain.h"

#include <QObject>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

class SettingsDraftTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void beginsWithTheDefaultsAndNoEditedPort()
    {
        const SettingsDraft draft;
        QCOMPARE(draft.settings(), UploadSettings());
        QVERIFY(!draft.hasManuallyEditedPort());
    }

    void editTellsOnceWhenSomethingIsDifferent()
    {
        SettingsDraft draft;
        const QSignalSpy changes(&draft, &SettingsDraft::changed);
        draft.edit([](UploadSettings &settings) { settings.username = u"me"_s; });
        QCOMPARE(draft.settings().username, u"me"_s);
        QCOMPARE(changes.size(), 1);
        draft.edit([](UploadSettings &settings) { settings.username = u"me"_s; });
        QCOMPARE(changes.size(), 1);
    }

    void anotherProtocolBringsItsPort_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::addColumn<std::int64_t>("port");
        QTest::newRow("ftp") << ServerType::ftp << std::int64_t(21);
        QTest::newRow("ftps") << ServerType::ftps << std::int64_t(990);
    }
    void anotherProtocolBringsItsPort()
    {
        QFETCH(const ServerType, type);
        SettingsDraft draft;
        select(draft, type);
        QTEST(draft.settings().port, "port");
        QVERIFY(draft.hasManuallyEditedPort());
    }

    void defaultPortOfEachProtocol()
    {
        QCOMPARE(defaultPort(ServerType::ftp), 21);
        QCOMPARE(defaultPort(ServerType::ftps), 990);
        QCOMPARE(defaultPort(ServerType::sftp), 22);
    }

    void portThatCameWithTheFirstSwitchStays()
    {
        SettingsDraft draft;
        select(draft, ServerType::ftp);
        select(draft, ServerType::ftps);
        QCOMPARE(draft.settings().port, 21);
        select(draft, ServerType::sftp);
        QCOMPARE(draft.settings().port, 21);
    }

    void switchThatChangesNoPortLeavesTheFlagClear()
    {
        SettingsDraft draft;
        draft.edit([](UploadSettings &settings) { settings.username = u"me"_s; });
        select(draft, ServerType::sftp);
        QVERIFY(!draft.hasManuallyEditedPort());
        select(draft, ServerType::ftp);
        QCOMPARE(draft.settings().port, 21);
    }

    void editedPortStaysWithAnyProtocol()
    {
        SettingsDraft draft;
        draft.edit([](UploadSettings &settings) { settings.port = 2222; });
        QVERIFY(draft.hasManuallyEditedPort());
        select(draft, ServerType::ftp);
        QCOMPARE(draft.settings().port, 2222);
    }

    void savedPortOtherThanTheDefaultCountsAsEdited()
    {
        UploadSettings saved;
        saved.port = 2200;
        SettingsDraft draft;
        draft.begin(saved);
        QVERIFY(draft.hasManuallyEditedPort());
        select(draft, ServerType::ftp);
        QCOMPARE(draft.settings().port, 2200);
    }

    void savedDefaultPortDoesNotCountAsEdited()
    {
        SettingsDraft draft;
        draft.edit([](UploadSettings &settings) { settings.port = 1; });
        draft.begin(UploadSettings());
        QVERIFY(!draft.hasManuallyEditedPort());
        select(draft, ServerType::ftps);
        QCOMPARE(draft.settings().port, 990);
    }

    void savedSettingsAreTakenAsTheyAre()
    {
        UploadSettings saved;
        saved.serverType = ServerType::ftp;
        saved.hostname = u"x.org"_s;
        saved.randomFilenameConfig.length = 99;
        SettingsDraft draft;
        const QSignalSpy changes(&draft, &SettingsDraft::changed);
        draft.begin(saved);
        QCOMPARE(draft.settings(), saved);
        QCOMPARE(changes.size(), 1);
    }

    void hostnameKeepsOnlyTheHostOfAnAddress_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("host");
        QTest::newRow("whole address")
            << u"https://me:pw@files.x.org:8443/a/b?c#d"_s << u"files.x.org"_s;
        QTest::newRow("scheme and host") << u"sftp://x.org"_s << u"x.org"_s;
        QTest::newRow("blanks around it") << u" ftp://x.org/ "_s << u"x.org"_s;
        QTest::newRow("numbers") << u"ftp://127.0.0.1:2121"_s << u"127.0.0.1"_s;
        QTest::newRow("without a scheme") << u"x.org/a:21"_s << u"x.org/a:21"_s;
        QTest::newRow("separator alone") << u"://"_s << u"://"_s;
        QTest::newRow("no host") << u"ftp:///a/b"_s << u"ftp:///a/b"_s;
        QTest::newRow("no scheme before it") << u"a b://c d"_s << u"a b://c d"_s;
        QTest::newRow("empty") << QString() << QString();
    }
    void hostnameKeepsOnlyTheHostOfAnAddress()
    {
        QFETCH(const QString, typed);
        SettingsDraft draft;
        draft.edit([&](UploadSettings &settings) { settings.hostname = typed; });
        QTEST(draft.settings().hostname, "host");
        QCOMPARE(draft.settings().port, 22);
        QVERIFY(!draft.hasManuallyEditedPort());
    }

private:
    static void select(SettingsDraft &draft, ServerType type)
    {
        draft.edit([type](UploadSettings &settings) { settings.serverType = type; });
    }
};

TESSERY_TEST_MAIN(QCoreApplication, SettingsDraftTest)
#include "SettingsDraftTest.moc"
