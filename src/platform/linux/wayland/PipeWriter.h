#pragma once

#include "base/UniqueFd.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <functional>

/// Writes into a pipe from which another program reads, without blocking, and closes it. SIGPIPE
/// must be ignored. Main thread.
class PipeWriter {
public:
    /// onEnded is called once from the event loop when the reader has everything, wants no more, or
    /// has taken nothing for as long as patience. May destroy the writer. Not null.
    PipeWriter(UniqueFd fd, QByteArray data, std::chrono::milliseconds patience,
               std::function<void()> onEnded);

    bool hasEnded() const { return !m_onEnded; }

private:
    void writeSome();
    void end();

    UniqueFd m_fd;
    QByteArray m_data;
    qsizetype m_written = 0;
    QSocketNotifier m_writable;
    QTimer m_patience;
    std::function<void()> m_onEnded;
};
