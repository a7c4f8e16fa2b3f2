#pragma once

#include <unistd.h>

#include <utility>

/// Owns one file descriptor and closes it. Empty (-1) when default-made or moved from.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : m_fd(fd) { }
    UniqueFd(UniqueFd &&other) noexcept : m_fd(std::exchange(other.m_fd, -1)) { }
    UniqueFd &operator=(UniqueFd &&other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    UniqueFd(const UniqueFd &) = delete;
    UniqueFd &operator=(const UniqueFd &) = delete;
    ~UniqueFd()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }

    int get() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }

    /// Gives the descriptor to the caller, who closes it from now on.
    [[nodiscard]] int release() { return std::exchange(m_fd, -1); }

private:
    int m_fd = -1;
};
