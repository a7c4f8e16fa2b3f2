#include "base/ChildProcess.h"
#include "base/TemporaryFile.h"
#include "base/UniqueFd.h"
#include "support/TestMain.h"

#include <QCoro/QCoroTask>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <vector>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using Ending = ProcessOutcome::Ending;

namespace {

ProcessCommand shell(const QString &script, std::chrono::milliseconds limit = 20s)
{
    return {u"/bin/sh"_s, {u"-c"_s, script}, limit};
}

ProcessOutcome run(ProcessCommand command, std::stop_token stop = {})
{
    return QCoro::waitFor(runChildProcess(std::move(command), std::move(stop)));
}

QCoro::Task<> noteEndOf(ProcessCommand command, bool *isDone)
{
    co_await runChildProcess(std::move(command));
    *isDone = true;
}

/// True once the process is gone, or is only waiting for its parent to notice.
bool hasEnded(const QByteArray &pid)
{
    QFile file(u"/proc/"_s + QString::fromLatin1(pid) + u"/stat"_s);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray line = file.readAll();
    return line.isEmpty() || line.mid(line.lastIndexOf(')') + 2).startsWith('Z');
}

long wakeUps()
{
    rusage usage = {};
    ::getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

} // namespace

class ChildProcessTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void exitCodeAndOutputsAreGiven()
    {
        const ProcessOutcome outcome = run(shell(u"echo out; echo err >&2; exit 7"_s));
        QCOMPARE(outcome.ending, Ending::Exited);
        QCOMPARE(outcome.status, 7);
        QCOMPARE(outcome.standardOutput, "out\n");
        QCOMPARE(outcome.standardError, "err\n");
        QCOMPARE(outcome.errorText, QString());
    }

    void argumentsArriveUnchanged()
    {
        const QStringList arguments = {u"%s\\n"_s, u"a b"_s, u"$HOME \"'"_s, u""_s, u"é"_s};
        const ProcessOutcome outcome = run({u"/usr/bin/printf"_s, arguments, 20s});
        QCOMPARE(outcome.standardOutput, "a b\n$HOME \"'\n\né\n");
    }

    void environmentAndFolderAreInherited()
    {
        const ProcessOutcome outcome = run(shell(u"pwd; echo $HOME"_s));
        const QByteArray expected = QDir::currentPath().toUtf8() + '\n' + qgetenv("HOME") + '\n';
        QCOMPARE(outcome.standardOutput, expected);
    }

    void variablesStandInThePlaceOfInheritedOnes()
    {
        qputenv("TESSERY_TEST_A", "inherited");
        qputenv("TESSERY_TEST_AB", "inherited");
        ProcessCommand command = shell(u"env | grep ^TESSERY_TEST_ | sort"_s);
        command.variables = {u"TESSERY_TEST_A=ours=\u00e9"_s, u"TESSERY_TEST_C="_s};
        const ProcessOutcome outcome = run(command);
        qunsetenv("TESSERY_TEST_A");
        qunsetenv("TESSERY_TEST_AB");
        QCOMPARE(outcome.standardOutput,
                 "TESSERY_TEST_A=ours=\u00e9\nTESSERY_TEST_AB=inherited\nTESSERY_TEST_C=\n");
    }

    void deathBySignalIsNoExit_data()
    {
        QTest::addColumn<int>("signal");
        for (const int signal : {SIGHUP, SIGKILL, SIGPIPE, SIGSEGV, SIGTERM})
            QTest::addRow("signal %d", signal) << signal;
    }
    void deathBySignalIsNoExit()
    {
        QFETCH(int, signal);
        const ProcessOutcome outcome = run(shell(u"echo out; kill -%1 $$; sleep 10"_s.arg(signal)));
        QCOMPARE(outcome.ending, Ending::Crashed);
        QCOMPARE(outcome.status, signal);
        QCOMPARE(outcome.standardOutput, "out\n");
    }

    void failureToStartIsToldAtOnce_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << u"/nowhere/tool"_s << u"No such file or directory"_s;
        QTest::newRow("not executable") << u"/etc/passwd"_s << u"Permission denied"_s;
        QTest::newRow("folder") << u"/etc"_s << u"Permission denied"_s;
        QTest::newRow("missing interpreter")
            << m_folder.filePath(u"orphan"_s) << u"No such file or directory"_s;
    }
    void failureToStartIsToldAtOnce()
    {
        QFETCH(QString, program);
        QFETCH(QString, reason);
        const TemporaryFile orphan(m_folder.filePath(u"orphan"_s), "#!/nowhere/interpreter\n",
                                   TemporaryFile::Mode::ReadWriteExecute);
        QElapsedTimer timer;
        timer.start();
        const ProcessOutcome outcome = run({program, {}, 20s});
        QVERIFY2(timer.elapsed() < 100, QByteArray::number(timer.elapsed()).constData());
        QCOMPARE(outcome.ending, Ending::CouldNotStart);
        QCOMPARE(outcome.errorText, u"Could not start "_s + program + u": "_s + reason);
        QCOMPARE(outcome.standardOutput, QByteArray());
    }

    void lackOfDescriptorsIsTold()
    {
        // Qt warns of it besides.
        static QStringList warnings;
        const QtMessageHandler handler = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { warnings += text; });
        const auto putBack = qScopeGuard([handler] { qInstallMessageHandler(handler); });

        rlimit before = {};
        ::getrlimit(RLIMIT_NOFILE, &before);
        rlimit few = before;
        for (rlim_t room = 0; room < 12; ++room) {
            const UniqueFd next(::open("/dev/null", O_RDONLY | O_CLOEXEC));
            few.rlim_cur = static_cast<rlim_t>(next.get()) + room;
            ::setrlimit(RLIMIT_NOFILE, &few);
            const ProcessOutcome outcome = run(shell(u"exit 0"_s));
            ::setrlimit(RLIMIT_NOFILE, &before);
            if (outcome.ending == Ending::Exited)
                continue;
            QCOMPARE(outcome.ending, Ending::CouldNotStart);
            QCOMPARE(outcome.errorText,
                     u"Could not start /bin/sh: No process or pipe could be made"_s);
        }
        for (const QString &text : std::as_const(warnings))
            QVERIFY2(text.contains(u": Cannot create pipe "_s), qPrintable(text));
    }

    void limitEndsTheChild()
    {
        QElapsedTimer timer;
        timer.start();
        const ProcessOutcome outcome = run(shell(u"echo out; exec sleep 30"_s, 100ms));
        QCOMPARE(outcome.ending, Ending::TimedOut);
        QCOMPARE(outcome.standardOutput, QByteArray());
        QVERIFY(timer.elapsed() >= 100);
        QVERIFY2(timer.elapsed() < 1000, QByteArray::number(timer.elapsed()).constData());
    }

    void childThatEndedWhileWeWereBusyIsNotLate()
    {
        // Blocks the event loop from before the end of the child until after its limit.
        QTimer::singleShot(0, this, [] { QThread::sleep(1); });
        const ProcessOutcome outcome = run(shell(u"sleep 0.1; echo out; exit 3"_s, 300ms));
        QCOMPARE(outcome.ending, Ending::Exited);
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.standardOutput, "out\n");
    }

    void childThatEndedWhileWeWereBusyIsNotStopped()
    {
        std::stop_source source;
        QTimer::singleShot(0, this, [&source] {
            QThread::sleep(1);
            source.request_stop();
        });
        const ProcessOutcome outcome = run(shell(u"sleep 0.1; exit 3"_s), source.get_token());
        QCOMPARE(outcome.ending, Ending::Exited);
        QCOMPARE(outcome.status, 3);
    }

    void limitOfNothingStrikesAtOnce()
    {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(run(shell(u"exec sleep 30"_s, 0ms)).ending, Ending::TimedOut);
        QVERIFY(timer.elapsed() < 1000);
    }

    void childThatIgnoresTerminationIsKilledAfterTwoSeconds()
    {
        QElapsedTimer timer;
        timer.start();
        const QString pidFile = m_folder.filePath(u"pid"_s);
        const ProcessOutcome outcome =
            run(shell(u"trap '' TERM; sleep 30 & echo $! > "_s + pidFile + u"; wait"_s, 300ms));
        QCOMPARE(outcome.ending, Ending::TimedOut);
        QVERIFY2(timer.elapsed() >= 2300, QByteArray::number(timer.elapsed()).constData());
        QVERIFY2(timer.elapsed() < 3500, QByteArray::number(timer.elapsed()).constData());
        QFile pid(pidFile);
        QVERIFY(pid.open(QIODevice::ReadOnly));
        const QByteArray grandchild = pid.readAll().trimmed();
        QVERIFY(!grandchild.isEmpty());
        QTRY_VERIFY(hasEnded(grandchild));
    }

    void childThatTidiesUpWhenToldToEndIsWaitedFor()
    {
        const QString file = m_folder.filePath(u"tidied"_s);
        const ProcessOutcome outcome = run(
            shell(u"trap 'sleep 0.5; echo yes > "_s + file + u"; exit 0' TERM; sleep 30 & wait"_s,
                  300ms));
        QCOMPARE(outcome.ending, Ending::TimedOut);
        QVERIFY(QFile::exists(file));
    }

    void stopEndsTheChild()
    {
        std::stop_source source;
        QTimer::singleShot(100ms, this, [&source] { source.request_stop(); });
        QElapsedTimer timer;
        timer.start();
        const ProcessOutcome outcome = run(shell(u"exec sleep 30"_s), source.get_token());
        QCOMPARE(outcome.ending, Ending::Stopped);
        QVERIFY(timer.elapsed() < 1000);
    }

    void stopBeforeTheStartStartsNothing()
    {
        std::stop_source source;
        source.request_stop();
        const QString file = m_folder.filePath(u"started"_s);
        const ProcessOutcome outcome = run(shell(u"echo > "_s + file), source.get_token());
        QCOMPARE(outcome.ending, Ending::Stopped);
        QVERIFY(!QFile::exists(file));
    }

    void stopAfterTheEndChangesNothing()
    {
        std::stop_source source;
        QCOMPARE(run(shell(u"exit 3"_s), source.get_token()).status, 3);
        source.request_stop();
    }

    void resultComesFromTheEventLoop()
    {
        bool isDone = false;
        const QCoro::Task<> task = noteEndOf({u"/nowhere/tool"_s, {}, 20s}, &isDone);
        QVERIFY(!isDone);
        QTRY_VERIFY(isDone);
    }

    void childHasDefaultSignals()
    {
        sigset_t blocked;
        sigset_t before;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGTERM);
        sigaddset(&blocked, SIGUSR1);
        sigprocmask(SIG_BLOCK, &blocked, &before);
        const auto pipeBefore = std::signal(SIGPIPE, SIG_IGN);
        const ProcessOutcome outcome =
            run({u"/bin/grep"_s, {u"-E"_s, u"^Sig(Blk|Ign)"_s, u"/proc/self/status"_s}, 20s});
        std::signal(SIGPIPE, pipeBefore);
        sigprocmask(SIG_SETMASK, &before, nullptr);

        QVERIFY2(outcome.standardOutput.contains("SigBlk:\t0000000000000000\n"),
                 outcome.standardOutput.constData());
        const qsizetype ignored = outcome.standardOutput.indexOf("SigIgn:\t");
        QVERIFY(ignored >= 0);
        const quint64 bits = outcome.standardOutput.mid(ignored + 8, 16).toULongLong(nullptr, 16);
        QCOMPARE(bits & (quint64(1) << (SIGPIPE - 1)), quint64(0));
    }

    void childHasNoInput()
    {
        QCOMPARE(run({u"/bin/readlink"_s, {u"/proc/self/fd/0"_s}, 20s}).standardOutput,
                 "/dev/null\n");
        QCOMPARE(run({u"/bin/cat"_s, {}, 20s}).ending, Ending::Exited);
    }

    void ourOpenFilesAreNotHandedOn()
    {
        const QByteArray listing = run({u"/bin/ls"_s, {u"/proc/self/fd"_s}, 20s}).standardOutput;
        QList<int> unexpected;
        for (const QByteArray &name : listing.trimmed().split('\n')) {
            // What whoever started us has handed on is no business of ours.
            const int flags = ::fcntl(name.toInt(), F_GETFD);
            if (name.toInt() > 2 && (flags < 0 || (flags & FD_CLOEXEC) != 0))
                unexpected << name.toInt();
        }
        QCOMPARE(unexpected.size(), 1); // The folder that ls lists.
    }

    void childLeadsASessionOfItsOwn()
    {
        const ProcessOutcome outcome = run(shell(u"read -r line < /proc/self/stat; echo $line"_s));
        const QList<QByteArray> fields = outcome.standardOutput.trimmed().split(' ');
        QCOMPARE(fields.at(4), fields.at(0)); // Process group.
        QCOMPARE(fields.at(5), fields.at(0)); // Session.
        QVERIFY(fields.at(0) != QByteArray::number(::getpid()));
    }

    void grandchildThatHoldsThePipesDelaysNothingAndDoesNotStay()
    {
        QElapsedTimer timer;
        timer.start();
        const ProcessOutcome outcome = run(shell(u"sleep 30 & echo $!"_s));
        QCOMPARE(outcome.ending, Ending::Exited);
        QVERIFY(timer.elapsed() < 1000);
        const QByteArray grandchild = outcome.standardOutput.trimmed();
        QVERIFY(grandchild.toInt() > 0);
        QTRY_VERIFY(hasEnded(grandchild));
    }

    void childIsToldToEndWhenWeDie()
    {
        // The FIFO is at its end once nobody holds it open for writing any more.
        const QByteArray fifo = QFile::encodeName(m_folder.filePath(u"fifo"_s));
        QCOMPARE(::mkfifo(fifo.constData(), 0600), 0);
        QProcess host;
        host.start(QStringLiteral(CHILD_PROCESS_HOST),
                   {u"/bin/sh"_s, u"-c"_s,
                    u"exec 3>"_s + QFile::decodeName(fifo) + u"; echo up >&3; exec sleep 30"_s});
        const int reader = ::open(fifo.constData(), O_RDONLY | O_CLOEXEC);
        QVERIFY(reader >= 0);
        char text[8] = {};
        QCOMPARE(::read(reader, text, sizeof text), ssize_t(3));
        host.kill();
        QVERIFY(host.waitForFinished());
        ::fcntl(reader, F_SETFL, O_NONBLOCK);
        QTRY_COMPARE(::read(reader, text, sizeof text), ssize_t(0));
        ::close(reader);
    }

    void largeOutputIsGathered()
    {
        const ProcessOutcome outcome =
            run(shell(u"head -c 10485760 /dev/zero; head -c 10485760 /dev/zero >&2"_s));
        QCOMPARE(outcome.ending, Ending::Exited);
        QCOMPARE(outcome.standardOutput.size(), 10485760);
        QCOMPARE(outcome.standardError.size(), 10485760);
    }

    void waitingWakesNobodyUp()
    {
        const long start = wakeUps();
        run({u"/bin/sleep"_s, {u"0.1"_s}, 20s});
        const long afterShort = wakeUps();
        run({u"/bin/sleep"_s, {u"1.1"_s}, 20s});
        const long afterLong = wakeUps();
        // The long wait costs what the short one costs, give or take the scheduler.
        QVERIFY2((afterLong - afterShort) <= (afterShort - start) + 3,
                 QByteArray::number(afterLong - afterShort).constData());
    }

    void scriptWrittenWhileOthersStartCanBeExecuted()
    {
        std::vector<std::unique_ptr<TemporaryFile>> scripts;
        std::vector<QCoro::Task<ProcessOutcome>> tasks;
        for (int i = 0; i < 50; ++i) {
            scripts.push_back(
                std::make_unique<TemporaryFile>(m_folder.filePath(u"script%1"_s.arg(i)),
                                                "#!/bin/sh\nexit " + QByteArray::number(i) + '\n',
                                                TemporaryFile::Mode::ReadWriteExecute));
            tasks.push_back(runChildProcess({scripts.back()->path(), {}, 20s}));
        }
        for (int i = 0; i < 50; ++i) {
            const ProcessOutcome outcome = QCoro::waitFor(tasks.at(static_cast<std::size_t>(i)));
            QCOMPARE(outcome.errorText, QString());
            QCOMPARE(outcome.status, i);
        }
    }

private:
    QTemporaryDir m_folder;
};

TESSERY_TEST_MAIN(QCoreApplication, ChildProcessTest)
#include "ChildProcessTest.moc"
