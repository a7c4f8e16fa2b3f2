#include "app/RemoteRequests.h"

#include "support/TestMain.h"

#include <QObject>

using namespace Qt::StringLiterals;

class RemoteRequestsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void refusal_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("areSettingsValid");
        QTest::addColumn<bool>("isMonitoring");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<bool>("asksForSettings");
        const auto row = [](const char *name, const QString &action, bool areSettingsValid,
                            bool isMonitoring, const QString &reason,
                            bool asksForSettings = false) {
            QTest::newRow(name) << action << areSettingsValid << isMonitoring << reason
                                << asksForSettings;
        };
        const QString invalid = u"the settings are not valid"_s;
        row("upload", u"upload-clipboard"_s, true, false, {});
        // The upload itself tells what is missing, as it does by the shortcut.
        row("upload, invalid", u"upload-clipboard"_s, false, true, {});
        row("start", u"start-monitoring"_s, true, false, {});
        row("start, invalid", u"start-monitoring"_s, false, false, invalid, true);
        row("start, monitoring", u"start-monitoring"_s, true, true, u"already monitoring"_s);
        row("start, monitoring, invalid", u"start-monitoring"_s, false, true,
            u"already monitoring"_s);
        row("stop", u"stop-monitoring"_s, true, true, {});
        // The menu's entry is disabled then, too.
        row("stop, invalid", u"stop-monitoring"_s, false, true, invalid);
        row("stop, not monitoring", u"stop-monitoring"_s, true, false, u"not monitoring"_s);
        row("settings", u"settings"_s, false, false, {});
        row("quit", u"quit"_s, false, true, {});
    }
    void refusal()
    {
        QFETCH(const QString, action);
        QFETCH(const bool, areSettingsValid);
        QFETCH(const bool, isMonitoring);
        const std::optional<RemoteAction> known = RemoteActions::named(action);
        QVERIFY(known);
        const auto refusal = RemoteRequests::refusal(
            *known, {[areSettingsValid] { return areSettingsValid; }, isMonitoring});
        QTEST(refusal ? refusal->reason : QString(), "reason");
        QTEST(refusal && refusal->asksForSettings, "asksForSettings");
    }

    void settingsAreJudgedOnlyWhereItMatters()
    {
        const RemoteRequests::Situation running{[] {
                                                    qWarning("asked the keyring");
                                                    return true;
                                                },
                                                true};
        QVERIFY(!RemoteRequests::refusal(RemoteAction::UploadClipboard, running));
        QVERIFY(!RemoteRequests::refusal(RemoteAction::Settings, running));
        QVERIFY(!RemoteRequests::refusal(RemoteAction::Quit, running));
        QVERIFY(RemoteRequests::refusal(RemoteAction::StartMonitoring, running));
    }
};

TESSERY_TEST_MAIN(QCoreApplication, RemoteRequestsTest)
#include "RemoteRequestsTest.moc"
