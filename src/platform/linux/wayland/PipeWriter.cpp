#include "platform/linux/wayland/PipeWriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

PipeWriter::PipeWriter(UniqueFd fd, QByteArray data, std::chrono::milliseconds patience,
                       std::function<void()> onEnded)
    : m_fd(std::move(fd))
    , m_data(std::move(data))
    , m_writable(m_fd.get(), QSocketNotifier::Write)
    , m_onEnded(std::move(onEnded))
{
    ::fcntl(m_fd.get(), F_SETFL, ::fcntl(m_fd.get(), F_GETFL) | O_NONBLOCK);
    QObject::connect(&m_writable, &QSocketNotifier::activated, &m_writable,
                     [this] { writeSome(); });
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    m_patience.callOnTimeout(&m_patience, [this] { end(); });
    m_patience.start();
}

void PipeWriter::writeSome()
{
    const ssize_t count = ::write(m_fd.get(), m_data.constData() + m_written,
                                  static_cast<std::size_t>(m_data.size() - m_written));
    if (count > 0) {
        m_written += count;
        m_patience.start();
    }
    const bool isRefused = count < 0 && errno != EAGAIN && errno != EINTR;
    if (isRefused || m_written == m_data.size())
        end();
}

void PipeWriter::end()
{
    m_writable.setEnabled(false);
    m_patience.stop();
    // From a copy, since the handler may destroy this object.
    if (const auto onEnded = std::exchange(m_onEnded, nullptr))
        onEnded();
}
