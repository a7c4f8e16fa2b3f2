#pragma once

#include <dirent.h>

#include <cerrno>
#include <memory>
#include <string_view>

/// Calls visit(std::string_view) with the name of each entry of the folder at path (its bytes as
/// they are, in the folder's own order, without "." and ".."). False if the folder could not be
/// read to its end. One pass that neither sorts nor looks at the files: folders can be large, and
/// this is done after every event.
template <typename Visitor>
[[nodiscard]] bool visitFolder(const char *path, Visitor visit)
{
    struct Close {
        void operator()(DIR *folder) const { ::closedir(folder); }
    };
    const std::unique_ptr<DIR, Close> folder(::opendir(path));
    if (!folder)
        return false;
    for (;;) {
        errno = 0;
        const dirent *const entry = ::readdir(folder.get());
        if (!entry)
            return errno == 0;
        const std::string_view name(entry->d_name);
        if (name != "." && name != "..")
            visit(name);
    }
}
