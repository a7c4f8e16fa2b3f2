#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

/// What the program has logged since this object was made.
class CapturedOutput {
public:
    CapturedOutput() : m_start(size()) { }

    QByteArray bytes() const
    {
        QByteArray text(static_cast<qsizetype>(size() - m_start), Qt::Uninitialized);
        if (::pread(STDOUT_FILENO, text.data(), static_cast<std::size_t>(text.size()), m_start)
            != text.size())
            std::abort();
        return text;
    }

    QStringList lines() const
    {
        QStringList lines = QString::fromUtf8(bytes()).split(u'\n');
        lines.removeLast(); // What follows the last line break.
        return lines;
    }

    /// Puts a file in memory in the place of standard output, for good, since the log opens its
    /// output once. What the test framework prints goes where standard output led.
    static bool install()
    {
        const int memory = ::memfd_create("log", MFD_CLOEXEC);
        ::stdout = ::fdopen(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3), "w");
        return ::stdout && ::dup2(memory, STDOUT_FILENO) >= 0 && ::close(memory) == 0
            && ::fcntl(STDOUT_FILENO, F_SETFL, O_APPEND) == 0;
    }

private:
    static off_t size()
    {
        struct stat status = {};
        if (!s_isInstalled || ::fstat(STDOUT_FILENO, &status) != 0)
            std::abort();
        return status.st_size;
    }

    static const bool s_isInstalled;

    off_t m_start;
};

/// Made before main(), and so before anything is logged.
inline const bool CapturedOutput::s_isInstalled = CapturedOutput::install();
