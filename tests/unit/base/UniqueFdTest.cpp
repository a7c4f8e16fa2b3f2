#include "base/UniqueFd.h"
#include "support/TestMain.h"

#include <fcntl.h>

namespace {

bool isOpen(int fd)
{
    return ::fcntl(fd, F_GETFD) >= 0;
}

int openSomething()
{
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

} // namespace

class UniqueFdTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void emptyOneOwnsNothing()
    {
        const UniqueFd fd;
        QVERIFY(!fd.isOpen());
        QCOMPARE(fd.get(), -1);
    }

    void releasedOneIsTheCallers()
    {
        int number = -1;
        {
            UniqueFd fd(openSomething());
            number = fd.release();
            QVERIFY(!fd.isOpen());
        }
        QVERIFY(isOpen(number));
        ::close(number);
    }

    void destructorCloses()
    {
        const int number = openSomething();
        {
            const UniqueFd fd(number);
            QVERIFY(fd.isOpen());
            QVERIFY(isOpen(number));
        }
        QVERIFY(!isOpen(number));
    }

    void movingHandsOver()
    {
        const int number = openSomething();
        UniqueFd first(number);
        {
            const UniqueFd second(std::move(first));
            QCOMPARE(second.get(), number);
            QVERIFY(!first.isOpen());
        }
        QVERIFY(!isOpen(number));
    }

    void assigningClosesWhatWasOwned()
    {
        const int old = openSomething();
        const int fresh = openSomething();
        UniqueFd fd(old);
        fd = UniqueFd(fresh);
        QCOMPARE(fd.get(), fresh);
        QVERIFY(!isOpen(old));
        fd = {};
        QVERIFY(!isOpen(fresh));
    }
};

TESSERY_TEST_MAIN(QCoreApplication, UniqueFdTest)
#include "UniqueFdTest.moc"
