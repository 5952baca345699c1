#include "core/AppOwnerIndex.h"
#include "core/Support.h"

namespace {

using namespace quarn::testing;

TEST(AppOwnerIndex, BundleOfAPath) {
    const char* const cases[][2] = {
        {"/Applications/Editor.app/Contents/Frameworks/Helper.app/Contents/MacOS/Helper",
         "/Applications/Editor.app"},
        {"//opt///GWorkspace.App//GWorkspace", "/opt/GWorkspace.App"},
        {"relative/x.APP", "relative/x.APP"},
        {"/srv/.app/x", ""},
        {"/usr/bin/myapp", ""},
        {"/opt/x.app2/y", ""},
        {"", ""},
    };
    for (const auto& [path, bundle] : cases)
        EXPECT_EQ(AppOwnerIndex::bundlePath(path).value_or(""), bundle) << path;
}

TEST(AppOwnerIndex, ExecutableNames) {
    EXPECT_EQ(executableName("Web Content", "/usr/lib/firefox/firefox"), "firefox");
    EXPECT_EQ(executableName("backup.py", "/usr/bin/python3.11"), "backup.py"); // a script runs in it
    EXPECT_EQ(executableName("sshd", ""), "sshd");
    EXPECT_EQ(executableName("helper", "/memfd:sealed-91173221a7ea"), "helper"); // without a file
    EXPECT_EQ(executableName("", "/usr/bin/sh"), "sh");
}

const std::string menu = "usr/share/applications/";
const std::string session = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";

/// A captured machine with applications of every kind.
class Machine : public TempRoot {
public:
    Machine() {
        unpack("applications.tree").link("usr/bin/office", "../lib/office/program/office");
        // The web browser's script runs the real program from a folder of its own.
        for (const char* program : {"usr/lib/web/web", "usr/bin/nautilus"}) write(program, "\177ELF");
    }

    void entry(const std::string& path, const std::string& lines) {
        write(path, "[Desktop Entry]\nType=Application\n" + lines + "\n");
    }

    AppOwnerIndex::Process process(std::string_view group, std::string_view path,
                                   std::string_view name = {}) {
        write(file("cgroup"), std::string(group) + "\n");
        return {pid, 1, name.empty() ? path.substr(path.rfind('/') + 1) : name, path};
    }
    void stat(int terminal, unsigned flags) {
        write(file("stat"), std::to_string(pid) + " (x) S 1 1 1 " + std::to_string(terminal) + " 1 " +
                                std::to_string(flags) + " 0 0 0 0 1 1 0 0 20 0 1 0 100 0\n");
    }
    std::string file(std::string_view name) const {
        return "proc/" + std::to_string(pid) + "/" + std::string(name);
    }

    static constexpr int64_t pid = 4242;
};

TEST(AppOwnerIndex, EveryKindOfApplication) {
    // The group, "~" for that of the user's applications, and the executable; entries of the menu are shown
    // by their file names.
    const char* const cases[][4] = {
        {"~app-gnome-org.gnome.Nautilus-7.scope", "/usr/bin/nautilus", "org.gnome.Nautilus.desktop",
         "Dateien"},
        // A helper in an application's group is the application's, whatever it runs.
        {"~app-web-7.scope", "/usr/bin/bash", "web.desktop", "Web"},
        {"~app-old\\x2dtool-7.scope", "/usr/bin/tool", "old/tool.desktop", "Tool"},
        {"~app-flatpak-org.y.Paint-7.scope", "/app/bin/paint",
         "/var/lib/flatpak/exports/share/applications/org.y.Paint.desktop", "Paint"},
        {"~snap.code.code-1-2.scope", "/snap/code/1/code",
         "/var/lib/snapd/desktop/applications/code_code.desktop", "Code"},
        {"0::/system.slice/snap.lxd.daemon.service", "/snap/lxd/1/lxd", "/snap/lxd", "lxd"},
        {"~app-nm\\x2dapplet@autostart.service", "/usr/bin/nm-applet", "/etc/xdg/autostart/nm-applet.desktop",
         "Network"},
        // An entry that is not there: the unit stands for it, the same at each start.
        {"~app-gnome-com.z.Gone-991.scope", "/opt/z/gone",
         "/user.slice/user-1000.slice/user@1000.service/app-com.z.Gone.scope", "Gone"},
        {"0::/system.slice/ssh.service", "/usr/sbin/sshd", "/usr/lib/systemd/system/ssh.service", "ssh"},
        {"0::/system.slice/system-getty.slice/getty@tty1.service", "/sbin/agetty",
         "/usr/lib/systemd/system/getty@.service", "getty"},
        {"~../session.slice/pipewire.service", "/usr/bin/pipewire", "/usr/lib/systemd/user/pipewire.service",
         "pipewire"},
        {"0::/system.slice/made-up.service", "/usr/bin/x", "/made-up.service", "made-up"},
        {"0::/system.slice/dbus.service", "/usr/bin/dbus-daemon", "/usr/lib/systemd/system/dbus.service",
         "dbus"},
        {"0::/system.slice/dbus.service", "/usr/bin/nautilus", "org.gnome.Nautilus.desktop", "Dateien"},
        {"0::/system.slice/dbus.service", "/usr/libexec/odd", "", ""},
        {"0::/lxc.payload.box/system.slice/ssh.service", "/srv/x.app/y", "/lxc.payload.box", "box"},
        // Outside any group that tells, the executable decides.
        {"0::/", "/usr/lib/web/web", "web.desktop", "Web"},
        {"0::/", "/usr/lib/web/crash/reporter", "web.desktop", "Web"},
        {"0::/", "/usr/lib/office/program/soffice.bin", "office.desktop", "Office"},
        {"0::/", "/home/ann/src/nautilus", "", ""}, // its namesake is a program that is elsewhere
        {"0::/", "/opt/Mail.app/mail", "/opt/Mail.app", "Mail"},
        {"0::/", "/snap/code/1/code", "/var/lib/snapd/desktop/applications/code_code.desktop", "Code"},
        {"0::/", "/home/ann/Draw.AppImage", "/home/ann/.local/share/applications/draw.desktop", "Draw"},
        {"0::/", "/home/ann/Etch-2.0.AppImage", "/home/ann/Etch-2.0.AppImage", "Etch"},
        {"0::/user.slice/user-1000.slice/session-2.scope", "/usr/bin/bash", "", ""},
        {"0::/", "", "", ""},
        {"", "/usr/bin/make", "", ""},
    };
    Machine machine;
    AppOwnerIndex index(machine.root(), "de_DE.UTF-8");
    for (const auto& [group, path, owner, name] : cases) {
        const auto bundle =
            index.bundleOf(machine.process(*group == '~' ? session + (group + 1) : group, path));
        const bool isInMenu = std::string_view(owner).ends_with(".desktop") && *owner != '/';
        EXPECT_EQ(bundle.value_or(Text()).view(), (isInMenu ? '/' + menu : "") + owner)
            << group << ' ' << path;
        EXPECT_EQ(bundle ? index.identity(*bundle).name : Text(), name) << path;
    }
}

TEST(AppOwnerIndex, WhatATerminalStartsBelongsToItself) {
    const std::string group = session + "app-org.x.Term-7.scope";
    const struct {
        const char *path, *name;
        int device;
        std::string_view bundle;
    } cases[]{
        {"/usr/bin/x-term", "x-term", 0, "/usr/share/applications/org.x.Term.desktop"},
        {"/usr/libexec/x-term-server", "x-term-server", 0, "/usr/share/applications/org.x.Term.desktop"},
        {"/usr/bin/python3.11", "script", 0, "/usr/share/applications/org.x.Term.desktop"},
        {"/usr/bin/python3.11", "job.py", 34816, ""},
        {"/usr/bin/cc1plus", "cc1plus", 34816, ""},
        {"/usr/bin/daemon", "daemon", 0, ""},
        {"/usr/lib/web/web", "web", 34816, "/usr/share/applications/web.desktop"},
    };
    Machine machine;
    AppOwnerIndex index(machine.root());
    for (const auto& each : cases) {
        machine.stat(each.device, 0);
        const auto bundle = index.bundleOf(machine.process(group, each.path, each.name));
        EXPECT_EQ(bundle.value_or(Text()), each.bundle) << each.name;
    }
}

TEST(AppOwnerIndex, KernelThreadsAreOneApplication) {
    Machine machine;
    machine.stat(0, 0x00208040);
    AppOwnerIndex index(machine.root());
    AppOwnerIndex::Process thread = machine.process("0::/", "", "kworker/0:1");
    EXPECT_FALSE(index.bundleOf(thread)); // a child of somebody else
    thread.ppid = 2;
    const auto bundle = index.bundleOf(thread);
    ASSERT_TRUE(bundle);
    EXPECT_EQ(index.identity(*bundle).name, "Kernel");
    machine.stat(0, 0x00400100); // in a container anything may have the kernel's pid
    EXPECT_FALSE(index.bundleOf(thread));
}

TEST(AppOwnerIndex, SandboxesTellThemselves) {
    Machine machine;
    AppOwnerIndex index(machine.root());
    machine.write(machine.file("root/.flatpak-info"), "[Application]\nname=org.y.Paint\n");
    EXPECT_EQ(*index.bundleOf(machine.process("0::/", "/usr/bin/nautilus")),
              "/var/lib/flatpak/exports/share/applications/org.y.Paint.desktop");
    machine.remove(machine.file("root"));
    machine.write(machine.file("environ"), std::string("A=b\0APPIMAGE=/home/ann/Etch-2.0.AppImage\0", 41));
    EXPECT_EQ(*index.bundleOf(machine.process("0::/", "/tmp/.mount_EtchX/usr/bin/etch")),
              "/home/ann/Etch-2.0.AppImage");
}

TEST(AppOwnerIndex, FollowsTheMenus) {
    Machine machine;
    AppOwnerIndex index(machine.root());
    const auto start = [&](const char* path) { return index.bundleOf(machine.process("0::/", path)); };
    EXPECT_FALSE(start("/usr/bin/new"));
    const uint64_t before = index.revision(100);
    machine.entry(menu + "new.desktop", "Name=New\nExec=new");
    EXPECT_EQ(index.revision(105), before); // not looked at so soon
    EXPECT_NE(index.revision(111), before);
    EXPECT_EQ(*start("/usr/bin/new"), "/usr/share/applications/new.desktop");
    EXPECT_TRUE(index.owner("/usr/share/applications/new.desktop").installed);

    // The user's own entry stands before the system's, and may hide it.
    const uint64_t withNew = index.revision(121);
    machine.entry("home/ann/.local/share/applications/new.desktop", "Hidden=true");
    EXPECT_NE(index.revision(132), withNew);
    EXPECT_FALSE(start("/usr/bin/new"));

    // A key that was noted before the application went still has a name.
    machine.remove("usr/share/applications/org.gnome.Nautilus.desktop");
    index.revision(143);
    const AppOwner gone = index.owner("/usr/share/applications/org.gnome.Nautilus.desktop");
    EXPECT_EQ(gone.name, "Nautilus");
    EXPECT_FALSE(gone.installed);
}

} // namespace
