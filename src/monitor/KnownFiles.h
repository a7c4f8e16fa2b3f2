#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

/// The names of all screenshots seen so far, compared by canonical equivalence. Never shrinks: a
/// screenshot that is deleted and made again is still known.
///
/// Folders are gone through again and again, mostly in the same order, and looking names up is the
/// most that costs. So it remembers the order in which the known names came in the last pass.
class KnownFiles {
public:
    std::size_t count() const { return m_keys.size(); }

    /// Called before the folder is gone through.
    void beginPass();

    /// Whether name is the known name that came next in the last pass. False says nothing.
    bool isNextAgain(std::string_view name);

    /// Whether name, a screenshot's, is known.
    bool contains(std::string_view name);

    void insert(std::string_view name);

private:
    /// Lets a set of strings be asked for a part of somebody else's buffer.
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };

    std::unordered_set<std::string, Hash, std::equal_to<>> m_keys;
    /// The known names in the order of the last pass and of this one, each followed by a NUL.
    std::string m_lastPass;
    std::string m_thisPass;
    std::size_t m_position = 0; ///< In the last pass.
};
