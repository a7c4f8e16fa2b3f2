#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QString>
#include <QStringList>

#include <chrono>
#include <stop_token>

/// A program to run: an absolute path, its arguments, and how long it may take.
struct ProcessCommand {
    QString program;
    QStringList arguments;
    std::chrono::milliseconds limit{0}; ///< From when it runs.
    QStringList variables = {}; ///< "NAME=value", over those of the environment that it inherits.
};

/// How a child process ended.
struct ProcessOutcome {
    enum class Ending {
        Exited, ///< By itself; status is its exit code.
        Crashed, ///< By a signal of somebody else's; status is the signal's number.
        TimedOut, ///< It still ran when the limit struck, and was ended.
        Stopped, ///< It still ran when the stop token asked for its end, and was ended.
        CouldNotStart, ///< errorText says why.
    };

    Ending ending = Ending::CouldNotStart;
    int status = 0;
    QByteArray standardOutput; ///< All of it; empty unless Exited or Crashed.
    QByteArray standardError; ///< Likewise.
    QString errorText; ///< Fit for the user; empty unless CouldNotStart.
};

/// Runs a program to its end: no input, both outputs gathered, the environment and working folder
/// inherited. The child is the leader of a session of its own, so that it can neither take over our
/// terminal nor leave children behind, and it is told to end if we die. At the limit, or when stop
/// asks, it is told to terminate, and killed if it has not ended two seconds later; the result is
/// there only once it has ended. Main thread.
[[nodiscard]] QCoro::Task<ProcessOutcome> runChildProcess(ProcessCommand command,
                                                          std::stop_token stop = {});
