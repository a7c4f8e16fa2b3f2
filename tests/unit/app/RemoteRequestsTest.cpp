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
        const auto row = [](const char *name, const QString &action, bool areSettingsValid,
                            bool isMonitoring, const QString &reason) {
            QTest::newRow(name) << action << areSettingsValid << isMonitoring << reason;
        };
        const QString invalid = u"the settings are not valid"_s;
        row("upload", u"upload-clipboard"_s, true, false, {});
        row("upload, invalid", u"upload-clipboard"_s, false, true, invalid);
        row("start", u"start-monitoring"_s, true, false, {});
        row("start, invalid", u"start-monitoring"_s, false, false, invalid);
        row("start, monitoring", u"start-monitoring"_s, true, true, u"already monitoring"_s);
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
        QTEST(RemoteRequests::refusal(*known, {areSettingsValid, isMonitoring}).value_or(QString()),
              "reason");
    }
};

TESSERY_TEST_MAIN(QCoreApplication, RemoteRequestsTest)
#include "RemoteRequestsTest.moc"
