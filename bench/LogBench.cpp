// What one log line costs over a bare write(2) of the same bytes, into a pipe that another process
// reads and into a file. Figures go to standard error.

#include "PairedRatio.h"

#include "base/Log.h"

#include <QString>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace {

constexpr std::string_view kLine =
    "✅ New screenshot detected: Screenshot 2025-12-01 at 21.31.56.png\n";

void bareWrite()
{
    [[maybe_unused]] const ssize_t count = ::write(STDOUT_FILENO, kLine.data(), kLine.size());
}

void measure(const char *name)
{
    const QString text = QString::fromUtf8(kLine.data(), static_cast<qsizetype>(kLine.size() - 1));
    printPairedRatio(name, 201, 200, bareWrite, [&text] { Log::line(text); });
}

/// The log finds out once what standard output is, so each kind gets a process of its own.
void inChild(const char *name, void (*redirect)())
{
    const pid_t child = ::fork();
    if (child == 0) {
        redirect();
        measure(name);
        std::_Exit(EXIT_SUCCESS);
    }
    ::waitpid(child, nullptr, 0);
}

void toPipe()
{
    int ends[2];
    if (::pipe(ends) != 0)
        std::abort();
    if (::fork() == 0) {
        ::close(ends[1]);
        char buffer[65536];
        while (::read(ends[0], buffer, sizeof buffer) > 0) { }
        std::_Exit(EXIT_SUCCESS);
    }
    ::close(ends[0]);
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(ends[1]);
}

void toNothing()
{
    ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
}

void toFile()
{
    char name[] = "log-bench-XXXXXX";
    const int file = ::mkstemp(name);
    ::unlink(name);
    ::dup2(file, STDOUT_FILENO);
}

} // namespace

int main()
{
    inChild("log line, pipe", toPipe);
    inChild("log line, file", toFile);
    inChild("log line, /dev/null", toNothing);
    return EXIT_SUCCESS;
}
