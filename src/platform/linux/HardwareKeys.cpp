#include "platform/linux/HardwareKeys.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

/// The position of each key code, from 0 on; KEY_RESERVED for codes that no shortcut can have.
constexpr auto kPositions = std::to_array<std::uint16_t>({
    KEY_A,          KEY_S,         KEY_D,         KEY_F,         KEY_H,
    KEY_G,          KEY_Z,         KEY_X,         KEY_C,         KEY_V, // 9
    KEY_RESERVED,   KEY_B,         KEY_Q,         KEY_W,         KEY_E,
    KEY_R,          KEY_Y,         KEY_T,         KEY_1,         KEY_2, // 19
    KEY_3,          KEY_4,         KEY_6,         KEY_5,         KEY_EQUAL,
    KEY_9,          KEY_7,         KEY_MINUS,     KEY_8,         KEY_0, // 29
    KEY_RIGHTBRACE, KEY_O,         KEY_U,         KEY_LEFTBRACE, KEY_I,
    KEY_P,          KEY_RESERVED,  KEY_L,         KEY_J,         KEY_APOSTROPHE, // 39
    KEY_K,          KEY_SEMICOLON, KEY_BACKSLASH, KEY_COMMA,     KEY_SLASH,
    KEY_N,          KEY_M,         KEY_DOT, // 47
});

/// What the keys type, in the same order.
constexpr std::string_view kSymbols = "asdfhgzxcv"
                                      " bqweryt"
                                      "123465=97-80"
                                      "]ou[ip"
                                      " lj'k;\\,/nm.";
static_assert(kSymbols.size() == kPositions.size());

} // namespace

std::optional<std::int64_t> HardwareKeys::keyCode(std::uint32_t position)
{
    const auto *const found = std::find(kPositions.begin(), kPositions.end(), position);
    if (position == KEY_RESERVED || found == kPositions.end())
        return std::nullopt;
    return found - kPositions.begin();
}

std::optional<std::uint32_t> HardwareKeys::position(std::int64_t keyCode)
{
    if (keyCode < 0 || keyCode >= static_cast<std::int64_t>(kPositions.size()))
        return std::nullopt;
    const std::uint32_t found = kPositions.at(static_cast<std::size_t>(keyCode));
    return found == KEY_RESERVED ? std::nullopt : std::optional(found);
}

std::optional<char> HardwareKeys::symbol(std::int64_t keyCode)
{
    return position(keyCode) ? std::optional(kSymbols.at(static_cast<std::size_t>(keyCode)))
                             : std::nullopt;
}
