#pragma once

#include <string>
#include <string_view>

namespace quarn {

/// What is used of an application's entry in the desktop's menus.
struct DesktopEntry {
    std::string program; ///< file name of the program it starts, without folder: "firefox"
    std::string icon;    ///< a name, or the path of a picture
};
/// Either text is empty when the entry lacks it. Never fails.
DesktopEntry parseDesktopEntry(std::string_view text);

} // namespace quarn
