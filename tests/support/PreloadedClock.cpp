// Sets the clock of Tessery, and of no other program, to another time: to be preloaded. Where the
// programs in front of Tessery are (those that take privileges away, or make a namespace), and
// where its tools are, it does nothing.

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr const char *kVariable = "TESSERY_CLOCK_AHEAD";

/// Seconds.
time_t ahead = 0;

[[gnu::constructor]] void set()
{
    const char *value = std::getenv(kVariable);
    if (!value || std::strcmp(program_invocation_short_name, "tessery") != 0)
        return;
    ahead = std::atol(value);
    ::unsetenv(kVariable);
    ::unsetenv("LD_PRELOAD");
}

} // namespace

// Not by the C library's own functions, which are the ones that these stand in front of.
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const long result = ::syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        time->tv_sec += ahead;
    return static_cast<int>(result);
}

extern "C" int gettimeofday(timeval *time, void *) noexcept
{
    timespec now = {};
    if (::clock_gettime(CLOCK_REALTIME, &now) != 0)
        return -1;
    *time = {.tv_sec = now.tv_sec, .tv_usec = now.tv_nsec / 1000};
    return 0;
}

extern "C" time_t time(time_t *result) noexcept
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (result)
        *result = now.tv_sec;
    return now.tv_sec;
}
