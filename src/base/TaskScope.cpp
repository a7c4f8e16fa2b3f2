#include "base/TaskScope.h"

#include "base/Log.h"

#include <utility>

using namespace Qt::StringLiterals;

void TaskScope::start(QCoro::Task<> operation)
{
    // The frame of the watching coroutine keeps the operation; the handle to it is not needed.
    [[maybe_unused]] const auto detached = watch(std::move(operation));
}

QCoro::Task<> TaskScope::watch(QCoro::Task<> operation)
{
    // The scope outlives its operations, so this is alive after the wait.
    ++m_running;
    try {
        co_await operation;
    } catch (const std::exception &error) {
        Log::line(u"❌ Unexpected error: "_s + QString::fromUtf8(error.what()));
    } catch (...) {
        Log::line(u"❌ Unexpected error of an unknown kind"_s);
    }
    --m_running;
    if (m_running == 0 && m_empty)
        m_empty->fire();
}

QCoro::Task<> TaskScope::drained()
{
    while (m_running > 0) {
        m_empty = std::make_unique<OneShot>();
        co_await *m_empty;
    }
    m_empty.reset();
}
