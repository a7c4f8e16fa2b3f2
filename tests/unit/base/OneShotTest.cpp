#include "base/OneShot.h"
#include "support/TestMain.h"

#include <QCoro/QCoroTask>
#include <QTimer>

#include <memory>

namespace {

QCoro::Task<> noteWhenFired(OneShot *event, bool *done)
{
    co_await *event;
    *done = true;
}

QCoro::Task<> destroyWhenFired(std::unique_ptr<QTimer> *timer, OneShot *event, bool *done)
{
    co_await *event;
    timer->reset();
    *done = true;
}

} // namespace

class OneShotTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void firingResumesFromTheEventLoopOnly()
    {
        OneShot event;
        bool isDone = false;
        const QCoro::Task<> task = noteWhenFired(&event, &isDone);
        QVERIFY(!isDone);
        QVERIFY(!event.hasFired());
        event.fire();
        QVERIFY(event.hasFired());
        QVERIFY(!isDone);
        QTRY_VERIFY(isDone);
    }

    void awaitingAFiredOneDoesNotSuspend()
    {
        OneShot event;
        event.fire();
        bool isDone = false;
        const QCoro::Task<> task = noteWhenFired(&event, &isDone);
        QVERIFY(isDone);
    }

    void firingTwiceResumesOnce()
    {
        OneShot event;
        bool isDone = false;
        const QCoro::Task<> task = noteWhenFired(&event, &isDone);
        event.fire();
        event.fire();
        QTRY_VERIFY(isDone);
        isDone = false;
        QCoreApplication::processEvents();
        QVERIFY(!isDone);
    }

    void coroutineMayDestroyWhoeverFired()
    {
        OneShot event;
        bool isDone = false;
        auto timer = std::make_unique<QTimer>();
        timer->callOnTimeout([&event] { event.fire(); });
        const QCoro::Task<> task = destroyWhenFired(&timer, &event, &isDone);
        timer->start();
        QTRY_VERIFY(isDone);
        QVERIFY(!timer);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, OneShotTest)
#include "OneShotTest.moc"
