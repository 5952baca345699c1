#include "ui/modules/DesktopEntry.h"

namespace quarn {
namespace {

TEST(DesktopEntry, ProgramAndIcon) {
    const struct {
        const char *text, *program, *icon;
    } cases[]{
        {"[Desktop Entry]\nName=Web\nExec=/usr/lib/web/web %u\nIcon=web\n", "web", "web"},
        {"# a comment\n[Desktop Entry]\nExec = env LANG=C \"/opt/My Editor/edit\" --new\nIcon = /opt/e.png",
         "edit", "/opt/e.png"},
        {"[Desktop Action new]\nExec=other\n[Desktop Entry]\nExec=main\n[Desktop Action "
         "x]\nExec=later\nIcon=later",
         "main", ""},
        {"Exec=no-group\nIcon=x", "", ""},
        {"[Desktop Entry]\nExec=\nIcon\n=\n", "", ""},
        {"[Desktop Entry]\nExec=\"unfinished", "unfinished", ""},
        {"[Desktop Entry]\nExec=python3 /usr/bin/tool\nIcon=tool", "",
         "tool"}, // not the icon of every script
        {"", "", ""},
    };
    for (const auto& each : cases) {
        const auto entry = parseDesktopEntry(each.text);
        EXPECT_EQ(entry.program, each.program) << each.text;
        EXPECT_EQ(entry.icon, each.icon) << each.text;
    }
}

} // namespace
} // namespace quarn
