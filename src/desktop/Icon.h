#pragma once

#include <QIcon>
#include <QString>

namespace quarn::desktop {

/// Line icons in the text's colour, drawn at any size and drawn anew when the theme changes. Names:
/// "overview", "cpu", "memory", "processes", "applications", "history", "program" (dim), "network",
/// "connections", "disks", "sensors", "power", "gpu", "system", "settings", "search", "pause", "play",
/// "close", "quarn"; "note", "warning" and "critical" in the hue of their level; another name gives a dot.
QIcon icon(const QString& name);

} // namespace quarn::desktop
