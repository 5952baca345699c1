#include "core/DesktopEntry.h"
#include "core/Support.h"

namespace {

using namespace quarn::testing;

TEST(DesktopEntry, ProgramAndIcon) {
    const char* const cases[][2] = {
        // the text; program, icon and how many arguments that tell it from others
        {"[Desktop Entry]\nName=Web\nExec=/usr/lib/web/web %u\nIcon=web\n", "web|web|0"},
        {"# a comment\n[Desktop Entry]\nExec = env LANG=C \"/opt/My Editor/edit\" --new\nIcon = /opt/e.png",
         "edit|/opt/e.png|1"},
        {"[Desktop Action new]\nExec=other\n[Desktop Entry]\nExec=main\n[Desktop Action "
         "x]\nExec=later\nIcon=later",
         "main||0"},
        {"Exec=no-group\nIcon=x", "||0"},
        {"[Desktop Entry]\nExec=\nIcon\n=\n", "||0"},
        {"[Desktop Entry]\nExec=\"unfinished", "unfinished||0"},
        {"[Desktop Entry]\nExec=python3 /usr/bin/tool\nIcon=tool", "|tool|0"}, // not that of every script
        {"[Desktop Entry]\nExec=/usr/bin/python3.11", "||0"},
        {"[Desktop Entry]\nExec=office --writer %U", "office||1"},
        {"", "||0"},
    };
    for (const auto& [text, shown] : cases) {
        const auto entry = parseDesktopEntry(text);
        EXPECT_EQ(joined(entry.program(), entry.icon, entry.arguments), shown) << text;
    }
}

TEST(DesktopEntry, NameInTheLanguageAskedFor) {
    constexpr const char* text = "[Desktop Entry]\nName=Files\nName[de]=Dateien\nName[de_AT]=Dateien (AT)\n"
                                 "Name[sr@latin]=Fajlovi\nName[sr]=Фајлови\nName[fr]=\nNameless=x\n";
    const char* const cases[][2] = {{"de_DE.UTF-8", "Dateien"}, {"de_AT.UTF-8@euro", "Dateien (AT)"},
                                    {"de", "Dateien"},          {"sr_RS@latin", "Fajlovi"},
                                    {"sr_RS.UTF-8", "Фајлови"}, {"fr_FR", "Files"},
                                    {"C.UTF-8", "Files"},       {"", "Files"}};
    for (const auto& [locale, name] : cases) EXPECT_EQ(parseDesktopEntry(text, locale).name, name) << locale;
}

TEST(DesktopEntry, WhatKindItIs) {
    const auto terminal = parseDesktopEntry(
        "[Desktop Entry]\nType=Application\nCategories=System;TerminalEmulator;\nX-SnapInstanceName=term\n");
    EXPECT_TRUE(terminal.isApplication && terminal.isTerminal);
    EXPECT_EQ(terminal.snap, "term");
    const auto link = parseDesktopEntry("[Desktop Entry]\nType=Link\nHidden=true\nNoDisplay=true\n"
                                        "Categories=X-TerminalEmulatorLike;\n");
    EXPECT_TRUE(link.removed && link.unlisted);
    EXPECT_FALSE(link.isApplication || link.isTerminal);
}

} // namespace
