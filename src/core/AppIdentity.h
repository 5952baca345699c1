#pragma once

#include "core/Text.h"

namespace sysinfo {

/// An application as the system knows it.
struct AppIdentity {
    Text path;     ///< its key for good: that of its bundle, menu entry or unit
    Text name;     ///< for people, in their language
    Text bundleID; ///< the identifier it goes by: "org.gnome.Nautilus", "ssh.service"
};

/// The application behind a key that was noted earlier.
struct AppOwner {
    Text path;
    Text name;
    bool installed = false; ///< there is still a file at `path`
};

} // namespace sysinfo
