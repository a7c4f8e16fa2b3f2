#pragma once

#include "base/OneShot.h"

#include <QCoro/QCoroTask>

#include <memory>
#include <stop_token>

/// Counts the asynchronous operations under way, logs what escapes from them, and lets quitting ask
/// them to end and wait until they have. Main thread. Must outlive its operations: await drained()
/// before destroying it.
class TaskScope {
public:
    TaskScope() = default;
    TaskScope(const TaskScope &) = delete;
    TaskScope &operator=(const TaskScope &) = delete;

    /// Takes charge of an operation that nobody else awaits.
    void start(QCoro::Task<> operation);

    /// What operations watch in order to end early.
    std::stop_token stopToken() const { return m_stopSource.get_token(); }

    /// Asks every operation to end early.
    void requestStop() { m_stopSource.request_stop(); }

    /// The operations that have not ended.
    int running() const { return m_running; }

    /// Completes once no operation is left. To be awaited by one coroutine at a time.
    [[nodiscard]] QCoro::Task<> drained();

private:
    [[nodiscard]] QCoro::Task<> watch(QCoro::Task<> operation);

    std::stop_source m_stopSource;
    std::unique_ptr<OneShot> m_empty;
    int m_running = 0;
};
