#include "platform/linux/wayland/PipeReader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

/// What is read in one turn of the event loop: as much as a pipe holds by default.
constexpr qsizetype kPiece = 64 * 1024;

} // namespace

PipeReader::PipeReader(UniqueFd fd, std::chrono::milliseconds patience)
    : m_fd(std::move(fd)), m_readable(m_fd.get(), QSocketNotifier::Read)
{
    QObject::connect(&m_readable, &QSocketNotifier::activated, &m_readable, [this] { readSome(); });
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    m_patience.callOnTimeout(&m_patience, [this] { cancel(); });
}

QCoro::Task<std::optional<QByteArray>> PipeReader::readAll()
{
    m_patience.start();
    co_await m_ended;
    m_patience.stop();
    if (!m_isComplete)
        co_return std::nullopt;
    QByteArray data = std::move(m_data);
    co_return data;
}

void PipeReader::cancel()
{
    m_readable.setEnabled(false);
    m_ended.fire();
}

void PipeReader::readSome()
{
    const qsizetype before = m_data.size();
    // Twice the room when there is none left: to grow piece by piece costs long copying.
    if (m_data.capacity() - before < kPiece)
        m_data.reserve(std::max(before + kPiece, 2 * before));
    m_data.resize(before + kPiece);
    const ssize_t count = ::read(m_fd.get(), m_data.data() + before, kPiece);
    const int error = errno;
    m_data.resize(before + std::max<ssize_t>(count, 0));
    if (count > 0) {
        m_patience.start();
    } else if (count == 0) {
        m_isComplete = true;
        cancel();
    } else if (error != EAGAIN && error != EINTR) {
        cancel();
    }
}
