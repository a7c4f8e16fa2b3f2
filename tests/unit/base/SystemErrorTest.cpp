#include "base/SystemError.h"
#include "support/TestMain.h"

#include <cerrno>

using namespace Qt::StringLiterals;

class SystemErrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void descriptionIsTheTextInBothForms()
    {
        const SystemError error(u"Gerät weg"_s);
        QCOMPARE(error.description(), u"Gerät weg"_s);
        QCOMPARE(QByteArray(error.what()), "Gerät weg");
    }

    void errnoIsTold()
    {
        const SystemError error = SystemError::fromErrno(u"Could not write /tmp/x"_s, ENOSPC);
        QCOMPARE(error.description(), u"Could not write /tmp/x: No space left on device"_s);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, SystemErrorTest)
#include "SystemErrorTest.moc"
