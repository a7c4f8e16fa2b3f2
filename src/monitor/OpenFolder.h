#pragma once

#include <dirent.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// A folder that is open for reading. It stays the one that was opened, whatever its path leads to
/// meanwhile.
class OpenFolder {
public:
    /// Which folder it is, and where it is mounted: another disk in the same drive has its numbers.
    /// A mount has a number of its own from Linux 6.8 on; before, a mount that follows another may
    /// get the other's.
    struct Identity {
        std::uint32_t deviceMajor = 0;
        std::uint32_t deviceMinor = 0;
        std::uint64_t inode = 0;
        std::uint64_t mount = 0;

        bool operator==(const Identity &) const = default;
    };

    /// Opens the folder at path, if there is one that may be read.
    explicit OpenFolder(const char *path);

    bool isOpen() const { return m_folder != nullptr; }

    /// Of an open folder. Empty if it cannot be told.
    std::optional<Identity> identity() const;

    /// Now, by the clock that files are stamped with, which may be a few milliseconds behind the
    /// others.
    static timespec now();

    /// Whether the entry came to be at that time or later: its status has changed since, and it was
    /// made since, where the file system knows when. Other permissions, another owner or a further
    /// link change the status of an old file, too. Empty if that cannot be told. One look at the
    /// file.
    std::optional<bool> isSince(const std::string &name, const timespec &time) const;

    /// Calls visit(std::string_view) with the name of each entry of an open folder (its bytes as
    /// they are, in the folder's own order, without "." and ".."). False if the folder could not be
    /// read to its end. One pass that neither sorts nor looks at the files: folders can be large,
    /// and this is done after every event. Called once.
    template <typename Visitor>
    [[nodiscard]] bool visit(Visitor visit)
    {
        for (;;) {
            errno = 0;
            const dirent *const entry = ::readdir(m_folder.get());
            if (!entry)
                return errno == 0;
            const std::string_view name(entry->d_name);
            if (name != "." && name != "..")
                visit(name);
        }
    }

private:
    struct Close {
        void operator()(DIR *folder) const { ::closedir(folder); }
    };
    std::unique_ptr<DIR, Close> m_folder;
};
