#pragma once

#include <string>
#include <string_view>

/// What a file's name says about the file. Names are UTF-8, which must be valid.
namespace ScreenshotName {

enum class Kind {
    Screenshot,
    OtherImage, ///< Not a screenshot's name, but it has the extension of an image.
    Other,
};

/// Whether name begins, in whatever case, with one of the words that desktops put before the names
/// of their screenshots. Compared by canonical equivalence and in whole characters; the extension
/// plays no part.
Kind kindOf(std::string_view name);

/// The same for all names that are canonically equivalent, and only for them. A name of ASCII
/// characters is its own key.
std::string canonicalKey(std::string_view name);

/// Whether name has no character beyond ASCII.
bool isAscii(std::string_view name);

} // namespace ScreenshotName
