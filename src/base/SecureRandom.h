#pragma once

#include <cstdint>

/// Cryptographically secure random numbers.
class SecureRandom {
public:
    virtual ~SecureRandom() = default;
    SecureRandom() = default;
    SecureRandom(const SecureRandom &) = delete;
    SecureRandom &operator=(const SecureRandom &) = delete;

    /// Sixty-four random bits.
    virtual std::uint64_t next() = 0;

    /// A number from 0 to bound - 1, each equally likely. bound must not be 0.
    std::uint64_t bounded(std::uint64_t bound);

    /// The kernel's generator.
    static SecureRandom &system();
};
