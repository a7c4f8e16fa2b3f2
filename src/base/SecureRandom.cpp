#include "base/SecureRandom.h"

#include <sys/random.h>

#include <cerrno>
#include <cstdlib>

namespace {

class SystemRandom final : public SecureRandom {
public:
    std::uint64_t next() override
    {
        std::uint64_t value = 0;
        // Requests of up to 256 bytes are never cut short once the generator is seeded.
        while (::getrandom(&value, sizeof value, 0) != sizeof value) {
            if (errno != EINTR)
                std::abort(); // A predictable name would be worse than none.
        }
        return value;
    }
};

__extension__ using Wide = unsigned __int128;

} // namespace

std::uint64_t SecureRandom::bounded(std::uint64_t bound)
{
    // Lemire's multiply-and-reject: the high word is the result, and the low words that would
    // make some results likelier than others are drawn again.
    const std::uint64_t threshold = (0 - bound) % bound;
    for (;;) {
        const Wide product = static_cast<Wide>(next()) * bound;
        if (static_cast<std::uint64_t>(product) >= threshold)
            return static_cast<std::uint64_t>(product >> 64);
    }
}

SecureRandom &SecureRandom::system()
{
    static SystemRandom random;
    return random;
}
