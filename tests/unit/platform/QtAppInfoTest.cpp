#include "platform/linux/QtAppInfo.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class QtAppInfoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void whatIsNotKnownIsAbsent()
    {
        QCoreApplication::setApplicationVersion({});
        QCOMPARE(QtAppInfo({}).version(), std::nullopt);
        QCOMPARE(QtAppInfo({}).build(), std::nullopt);
    }

    void versionIsTheApplications()
    {
        QCoreApplication::setApplicationVersion(u"1.2.3"_s);
        QCOMPARE(QtAppInfo({}).version(), std::optional(u"1.2.3"_s));
    }

    void buildIsWhatItWasGiven() { QCOMPARE(QtAppInfo(u"42"_s).build(), std::optional(u"42"_s)); }
};

TESSERY_TEST_MAIN(QCoreApplication, QtAppInfoTest)

#include "QtAppInfoTest.moc"
