#include "base/ChildProcess.h"
#include "base/TaskScope.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <QCoro/QCoroTask>
#include <QElapsedTimer>

#include <stdexcept>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

QCoro::Task<> waitFor(OneShot *event)
{
    co_await *event;
}

QCoro::Task<> failAfter(OneShot *event)
{
    co_await *event;
    throw std::runtime_error("broken");
}

QCoro::Task<> failOddlyAfter(OneShot *event)
{
    co_await *event;
    throw 7;
}

// Brace-made arguments within a coroutine stop gcc 12.
ProcessCommand sleepCommand()
{
    return {u"/bin/sleep"_s, {u"30"_s}, 30s};
}

QCoro::Task<> sleepUntilStopped(std::stop_token stop, bool *isStopped)
{
    const ProcessCommand command = sleepCommand();
    const ProcessOutcome outcome = co_await runChildProcess(command, std::move(stop));
    *isStopped = outcome.ending == ProcessOutcome::Ending::Stopped;
}

QCoro::Task<> startAnotherAfter(TaskScope *scope, OneShot *first, OneShot *second)
{
    co_await *first;
    scope->start(waitFor(second));
}

QCoro::Task<> noteDrained(TaskScope *scope, bool *isDrained)
{
    co_await scope->drained();
    *isDrained = true;
}

} // namespace

class TaskScopeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void runningCountsWhatHasNotEnded()
    {
        TaskScope scope;
        OneShot first;
        OneShot second;
        scope.start(waitFor(&first));
        scope.start(waitFor(&second));
        QCOMPARE(scope.running(), 2);
        first.fire();
        QTRY_COMPARE(scope.running(), 1);
        second.fire();
        QTRY_COMPARE(scope.running(), 0);
    }

    void operationThatEndsAtOnceIsNotCounted()
    {
        TaskScope scope;
        OneShot fired;
        fired.fire();
        scope.start(waitFor(&fired));
        QCOMPARE(scope.running(), 0);
    }

    void drainedCompletesAtOnceWhenNothingRuns()
    {
        TaskScope scope;
        bool isDrained = false;
        const QCoro::Task<> task = noteDrained(&scope, &isDrained);
        QVERIFY(isDrained);
    }

    void drainedWaitsForTheLastOperation()
    {
        TaskScope scope;
        OneShot first;
        OneShot second;
        scope.start(waitFor(&first));
        scope.start(waitFor(&second));
        bool isDrained = false;
        const QCoro::Task<> task = noteDrained(&scope, &isDrained);
        first.fire();
        QTRY_COMPARE(scope.running(), 1);
        QVERIFY(!isDrained);
        second.fire();
        QTRY_VERIFY(isDrained);
    }

    void drainedWaitsForWhatAnOperationStarts()
    {
        TaskScope scope;
        OneShot first;
        OneShot second;
        scope.start(startAnotherAfter(&scope, &first, &second));
        bool isDrained = false;
        const QCoro::Task<> task = noteDrained(&scope, &isDrained);
        first.fire();
        QCoreApplication::processEvents();
        QVERIFY(!isDrained);
        second.fire();
        QTRY_VERIFY(isDrained);
    }

    void escapingExceptionsEndTheOperationAndAreLogged()
    {
        const CapturedOutput output;
        TaskScope scope;
        OneShot first;
        OneShot second;
        scope.start(failAfter(&first));
        scope.start(failOddlyAfter(&second));
        QCOMPARE(scope.running(), 2);
        first.fire();
        QTRY_COMPARE(scope.running(), 1);
        second.fire();
        QTRY_COMPARE(scope.running(), 0);
        QCOMPARE(output.lines(),
                 QStringList({u"❌ Unexpected error: broken"_s,
                              u"❌ Unexpected error of an unknown kind"_s}));
    }

    void stopEndsChildrenQuickly()
    {
        TaskScope scope;
        bool isStopped = false;
        scope.start(sleepUntilStopped(scope.stopToken(), &isStopped));
        QElapsedTimer timer;
        timer.start();
        scope.requestStop();
        QCoro::waitFor(scope.drained());
        QVERIFY(isStopped);
        QVERIFY(timer.elapsed() < 1000);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, TaskScopeTest)
#include "TaskScopeTest.moc"
