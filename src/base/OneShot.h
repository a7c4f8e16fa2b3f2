#pragma once

#include <QMetaObject>
#include <QObject>

#include <coroutine>

/// An event that happens once and that one coroutine awaits. Firing resumes the coroutine from the
/// event loop, never from inside fire(), so the coroutine may destroy whoever fired. Main thread.
class OneShot {
public:
    OneShot() = default;
    OneShot(const OneShot &) = delete;
    OneShot &operator=(const OneShot &) = delete;

    /// Lets the event happen. Later calls do nothing.
    void fire()
    {
        if (m_fired)
            return;
        m_fired = true;
        if (m_waiting)
            QMetaObject::invokeMethod(&m_context, m_waiting, Qt::QueuedConnection);
    }

    bool hasFired() const { return m_fired; }

    struct Awaiter {
        OneShot *event;
        bool await_ready() const noexcept { return event->m_fired; }
        void await_suspend(std::coroutine_handle<> waiting) const noexcept
        {
            event->m_waiting = waiting;
        }
        void await_resume() const noexcept { }
    };
    Awaiter operator co_await() noexcept { return {this}; }

private:
    QObject m_context;
    std::coroutine_handle<> m_waiting;
    bool m_fired = false;
};
