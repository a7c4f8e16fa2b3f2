#include "platform/RemoteAction.h"
#include "platform/linux/DesktopEntry.h"
#include "support/TestMain.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class DesktopActionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    /// A launcher asks for an action by the name that the entry gives it.
    void theEntryOffersTheProgramsActions()
    {
        QFile file(QStringLiteral(TESSERY_DESKTOP_ENTRY));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QStringList names;
        for (const RemoteAction action : RemoteActions::all())
            names << RemoteActions::nameOf(action);
        QCOMPARE(DesktopEntry(file.readAll()).list(u"Actions"_s), names);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, DesktopActionsTest)

#include "DesktopActionsTest.moc"
