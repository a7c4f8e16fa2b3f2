#include "base/Log.h"

#include "base/UniqueFd.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QSocketNotifier>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <memory>

namespace {

/// How much a reader that has stopped reading may owe us.
constexpr qsizetype kMostBytesKept = 1024 * 1024;

/// Standard output.
class Output {
public:
    Output()
    {
        struct stat status = {};
        if (::fstat(STDOUT_FILENO, &status) != 0)
            return;
        m_fd = STDOUT_FILENO;
        m_isSocket = S_ISSOCK(status.st_mode);
        if (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)) {
            // O_NONBLOCK belongs to the open file, which we may share with a shell or a parent.
            // Opening the same pipe or terminal anew gives us one of our own.
            m_own =
                UniqueFd(::open("/proc/self/fd/1", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
            if (m_own.isOpen())
                m_fd = m_own.get();
            else
                m_mayBlock = true; // It belongs to another user.
        }
    }

    void write(QByteArrayView lines)
    {
        if (m_kept.isEmpty()) {
            keepWholeLines(lines, lines.size() - writeSome(lines));
        } else {
            keepWholeLines(lines, lines.size());
            writeKept();
        }
    }

private:
    /// Writes what the reader takes without waiting. Gives its size, or that of lines if nobody
    /// will ever read it.
    qsizetype writeSome(QByteArrayView lines) const
    {
        qsizetype done = 0;
        while (done < lines.size()) {
            const ssize_t count = writeOnce(lines.sliced(done));
            if (count > 0)
                done += count;
            else if (count == 0 || errno == EAGAIN || errno == EWOULDBLOCK)
                break;
            else if (errno != EINTR)
                return lines.size();
        }
        return done;
    }

    ssize_t writeOnce(QByteArrayView lines) const
    {
        auto size = static_cast<std::size_t>(lines.size());
        if (m_isSocket)
            return ::send(m_fd, lines.data(), size, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (m_mayBlock) {
            pollfd room = {.fd = m_fd, .events = POLLOUT, .revents = 0};
            if (::poll(&room, 1, 0) <= 0)
                return 0;
            size = std::min<std::size_t>(size, PIPE_BUF); // As much as a writable pipe takes.
        }
        return ::write(m_fd, lines.data(), size);
    }

    /// Keeps the last count bytes of lines as far as there is room for whole lines.
    void keepWholeLines(QByteArrayView lines, qsizetype count)
    {
        if (count <= 0)
            return;
        QByteArrayView rest = lines.last(count);
        const qsizetype room = kMostBytesKept - m_kept.size();
        if (rest.size() > room)
            rest = rest.first(room > 0 ? rest.first(room).lastIndexOf('\n') + 1 : 0);
        m_kept.append(rest);
        if (!m_kept.isEmpty() && QCoreApplication::instance()) {
            if (!m_writable) {
                m_writable = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Write);
                QObject::connect(m_writable.get(), &QSocketNotifier::activated, m_writable.get(),
                                 [this] { writeKept(); });
                // The notifier needs the application's event dispatcher.
                QObject::connect(QCoreApplication::instance(), &QObject::destroyed,
                                 m_writable.get(), [this] { m_writable.reset(); });
            }
            m_writable->setEnabled(true);
        }
    }

    void writeKept()
    {
        m_kept.remove(0, writeSome(m_kept));
        if (m_kept.isEmpty() && m_writable)
            m_writable->setEnabled(false);
    }

    int m_fd = -1;
    bool m_isSocket = false;
    bool m_mayBlock = false;
    UniqueFd m_own;
    QByteArray m_kept;
    std::unique_ptr<QSocketNotifier> m_writable;
};

Output &output()
{
    // Never destroyed: lines may be logged by whatever is torn down last.
    static Output &output = *std::make_unique<Output>().release();
    return output;
}

} // namespace

void Log::prepareStandardStreams()
{
    for (int fd = 0; fd <= 2; ++fd) {
        if (::fcntl(fd, F_GETFD) < 0) {
            // The lowest free number is the one that is missing.
            [[maybe_unused]] const int opened = ::open("/dev/null", O_RDWR);
        }
    }
    std::signal(SIGPIPE, SIG_IGN);
    output(); // Opens what it needs.
}

void Log::line(const QString &text)
{
    QByteArray utf8 = text.toUtf8();
    utf8.append('\n');
    output().write(utf8);
}

Log::Batch::~Batch()
{
    if (!m_lines.isEmpty())
        output().write(m_lines);
}

void Log::Batch::line(const QString &text)
{
    line(QByteArrayView(text.toUtf8()));
}

void Log::Batch::line(QByteArrayView utf8)
{
    m_lines.append(utf8).append('\n');
}
