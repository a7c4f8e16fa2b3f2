#pragma once

#include "base/OneShot.h"
#include "base/UniqueFd.h"

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <optional>

/// Reads what another program writes into a pipe, to its end, without blocking. Main thread. Must
/// outlive its task.
class PipeReader {
public:
    /// fd does not block and is kept until the end. patience is for each piece.
    PipeReader(UniqueFd fd, std::chrono::milliseconds patience);

    /// Everything that is written. Absent if the writer is silent for as long as patience, or on
    /// cancel(). To be called once.
    [[nodiscard]] QCoro::Task<std::optional<QByteArray>> readAll();

    /// Ends the reading.
    void cancel();

private:
    void readSome();

    UniqueFd m_fd;
    QSocketNotifier m_readable;
    QTimer m_patience;
    OneShot m_ended;
    QByteArray m_data;
    bool m_isComplete = false;
};
