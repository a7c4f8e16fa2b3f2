#include "platform/linux/x11/X11Startup.h"

#include "support/TestMain.h"

#include <QObject>

using namespace Qt::StringLiterals;

class X11StartupTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void timeStandsAtTheEnd()
    {
        QCOMPARE(X11Startup::timeOf(u"gnome-shell/Tessery/1-2-host_TIME4294967295"_s), 4294967295U);
        QCOMPARE(X11Startup::timeOf(u"a_TIME1_TIME23"_s), 23U);
    }

    void withoutATimeThereIsNone()
    {
        for (const QString &id : {QString(), u"some-token"_s, u"x_TIME"_s, u"x_TIMEnow"_s,
                                  u"x_TIME-1"_s, u"x_TIME4294967296"_s})
            QVERIFY(!X11Startup::timeOf(id));
    }

    void endNamesTheId()
    {
        QCOMPARE(X11Startup::endMessage(u"host_TIME12"_s), "remove: ID=\"host_TIME12\"");
        QCOMPARE(X11Startup::endMessage(u"a\"b\\c é"_s), "remove: ID=\"a\\\"b\\\\c é\"");
    }

    void whatCannotBeAnIdEndsNothing()
    {
        QCOMPARE(X11Startup::endMessage({}), "");
        QCOMPARE(X11Startup::endMessage(u"two\nlines"_s), "");
        QCOMPARE(X11Startup::endMessage(QString(513, u'x')), "");
    }
};

TESSERY_TEST_MAIN(QCoreApplication, X11StartupTest)
#include "X11StartupTest.moc"
