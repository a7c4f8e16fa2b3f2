#pragma once

#include "base/SecureRandom.h"

#include <vector>

/// Random numbers that the test chooses, from the first again after the last.
class ScriptedRandom final : public SecureRandom {
public:
    std::uint64_t next() override { return numbers.at(drawn++ % numbers.size()); }

    std::vector<std::uint64_t> numbers{0};
    std::size_t drawn = 0;
};
