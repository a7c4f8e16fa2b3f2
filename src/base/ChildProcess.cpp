#include "base/ChildProcess.h"

#include "base/OneShot.h"
#include "base/SystemError.h"
#include "base/UniqueFd.h"

#include <QFile>
#include <QProcess>
#include <QTimer>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <vector>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using Ending = ProcessOutcome::Ending;

namespace {

/// How long a child may take to end once it was told to.
constexpr auto kTerminationGrace = 2s;

/// Starts the program in QProcess's child, and tells why that failed. Qt 6.4 would leave a
/// descriptor open in this process for every program that it cannot start.
class Launch {
public:
    explicit Launch(const ProcessCommand &command)
    {
        m_texts.push_back(QFile::encodeName(command.program));
        for (const QString &argument : command.arguments)
            m_texts.push_back(argument.toUtf8());
        for (QByteArray &text : m_texts)
            m_arguments.push_back(text.data());
        m_arguments.push_back(nullptr);
        setVariables(command.variables);

        std::array<int, 2> ends = {};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
            m_reader = UniqueFd(ends[0]);
            m_writer = UniqueFd(ends[1]);
        }
    }

    /// Runs in the child between fork and exec, so it may only call what a signal handler may. The
    /// child may share our memory until then and never leaves this function, so the address
    /// sanitizer must keep no record of its frame.
    [[noreturn]] __attribute__((no_sanitize_address)) void exec() const
    {
        ::setsid();
        // Ignored signals survive exec, and so does the signal mask. Qt puts SIGPIPE right, but
        // newer versions only after this function would have returned.
        ::signal(SIGPIPE, SIG_DFL);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() == m_parent) { // Else it died before we asked to be told.
            ::execve(m_arguments.front(), m_arguments.data(), m_environment.data());
            const int error = errno;
            [[maybe_unused]] const ssize_t written = ::write(m_writer.get(), &error, sizeof error);
        }
        ::_exit(127);
    }

    /// Why the program could not be started, as an errno value; absent when it runs. To be called
    /// once the child is there.
    std::optional<int> failure()
    {
        m_writer = {};
        int error = 0;
        // At the end at once if the child has got another program: exec closed its side.
        if (::read(m_reader.get(), &error, sizeof error) == ssize_t(sizeof error))
            return error;
        return std::nullopt;
    }

private:
    /// Our own environment, with variables in the place of those of the same names.
    void setVariables(const QStringList &variables)
    {
        for (const QString &variable : variables)
            m_variables.push_back(variable.toUtf8());
        for (char **inherited = environ; *inherited; ++inherited) {
            const QByteArrayView text(*inherited);
            const auto replaces = [name = text.first(text.indexOf('=') + 1)](QByteArrayView other) {
                return other.startsWith(name);
            };
            if (std::ranges::none_of(m_variables, replaces))
                m_environment.push_back(*inherited);
        }
        for (QByteArray &variable : m_variables)
            m_environment.push_back(variable.data());
        m_environment.push_back(nullptr);
    }

    pid_t m_parent = ::getpid();
    std::vector<QByteArray> m_texts;
    std::vector<char *> m_arguments;
    std::vector<QByteArray> m_variables;
    std::vector<char *> m_environment;
    UniqueFd m_reader;
    UniqueFd m_writer;
};

/// Whether a child that we have not reaped has ended.
bool hasEnded(qint64 pid)
{
    siginfo_t info = {};
    return pid > 0
        && ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0
        && info.si_pid == pid;
}

/// Kills what is left of the session that the child with this id leads or led.
void killSession(qint64 leader)
{
    if (leader > 0)
        ::kill(-static_cast<pid_t>(leader), SIGKILL);
}

/// Tells a running process to end, and kills it if it does not. ended fires when the process ends.
QCoro::Task<> endProcess(QProcess *process, OneShot *ended)
{
    QTimer grace;
    grace.setSingleShot(true);
    grace.setTimerType(Qt::PreciseTimer);
    grace.callOnTimeout(process, [process] {
        killSession(process->processId());
        process->kill();
    });
    process->terminate();
    grace.start(kTerminationGrace);
    co_await *ended;
}

ProcessOutcome couldNotStart(const QString &program, const QString &reason)
{
    ProcessOutcome outcome;
    outcome.errorText = u"Could not start "_s + program + u": "_s + reason;
    return outcome;
}

/// The outcome of a process that was started and has ended.
ProcessOutcome outcomeOf(QProcess &process, std::optional<Ending> cutShort)
{
    ProcessOutcome outcome;
    if (cutShort) {
        outcome.ending = *cutShort;
        return outcome;
    }
    outcome.ending =
        process.exitStatus() == QProcess::NormalExit ? Ending::Exited : Ending::Crashed;
    // For a crashed child Qt gives the signal's number here.
    outcome.status = process.exitCode();
    outcome.standardOutput = process.readAllStandardOutput();
    outcome.standardError = process.readAllStandardError();
    return outcome;
}

} // namespace

QCoro::Task<ProcessOutcome> runChildProcess(ProcessCommand command, std::stop_token stop)
{
    if (stop.stop_requested()) {
        ProcessOutcome notStarted;
        notStarted.ending = Ending::Stopped;
        co_return notStarted;
    }

    // Everything below lives in this coroutine's frame, and the frame lives until the child ended.
    OneShot endedOrCutShort;
    OneShot ended;
    std::optional<Ending> cutShort;
    // The check takes the copying of the closure for that of the coroutine's parameters.
    // NOLINTNEXTLINE(cppcoreguidelines-avoid-reference-coroutine-parameters)
    const auto noteEnd = [&ended, &endedOrCutShort] {
        ended.fire();
        endedOrCutShort.fire();
    };
    const auto cutShortAs = [&cutShort, &endedOrCutShort](Ending ending) {
        if (!cutShort)
            cutShort = ending;
        endedOrCutShort.fire();
    };

    Launch launch(command);
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([&launch] { launch.exec(); });
    QObject::connect(&process, &QProcess::finished, &process, noteEnd);
    QObject::connect(&process, &QProcess::errorOccurred, &process,
                     [&noteEnd](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             noteEnd();
                     });
    QTimer limit;
    limit.setSingleShot(true);
    limit.setTimerType(Qt::PreciseTimer);
    limit.callOnTimeout(&process, [&cutShortAs] { cutShortAs(Ending::TimedOut); });
    const std::stop_callback onStop(stop, [&cutShortAs] { cutShortAs(Ending::Stopped); });

    process.start(command.program, command.arguments);
    const qint64 session = process.processId();
    const std::optional<int> startFailure = launch.failure();
    limit.start(command.limit);
    co_await endedOrCutShort;

    // Where we were busy, its end may be long ago, and the limit is only the first that we hear of.
    if (ended.hasFired() || hasEnded(session)) {
        cutShort.reset();
        co_await ended;
    } else {
        co_await endProcess(&process, &ended);
    }
    killSession(session); // What it left running would outlive it.

    if (startFailure)
        co_return couldNotStart(command.program, SystemError::textOf(*startFailure));
    if (process.error() == QProcess::FailedToStart) // Qt's text would tell of something else.
        co_return couldNotStart(command.program, u"No process or pipe could be made"_s);
    co_return outcomeOf(process, cutShort);
}
