// What control groups, paths and small files tell of the application behind a process.
#include "core/linux/ControlGroup.h"
#include "core/Support.h"

#include "core/linux/Programs.h"
#include "core/linux/Sandbox.h"

namespace {

using namespace quarn::testing;
using Kind = GroupOwner::Kind;

TEST(ControlGroup, IsTheServiceManagers) {
    const char* const cases[][2] = {
        {"0::/user.slice/user-1000.slice/user@1000.service/gnome-terminal-server.service\n",
         "/user.slice/user-1000.slice/user@1000.service/gnome-terminal-server.service"},
        {"0::/some/long/path:foobar\n", "/some/long/path:foobar"},
        {"10:rdma:/\n3:cpu,cpuacct:/elsewhere\n1:name=systemd:/system.slice/ssh.service\n0::/\n",
         "/system.slice/ssh.service"},
        {"1:name=systemd:/old\n0::/new\n", "/new"},
        {"0::/\n", "/"},
        {"9:memory:/only/a/controller\n", ""},
        {"0:\n0::\nx", ""},
        {"", ""},
    };
    for (const auto& [text, path] : cases) EXPECT_EQ(parseControlGroup(text), path) << text;
}

/// With "~" for the user's service manager and "#" for the number of a container.
std::string written(std::string text) {
    if (const size_t at = text.find('~'); at != text.npos)
        text.replace(at, 1, "/user.slice/user-1000.slice/user@1000.service");
    if (const size_t at = text.find('#'); at != text.npos) text.replace(at, 1, std::string(64, 'a'));
    return text;
}

TEST(ControlGroup, TellsTheUnit) {
    const struct {
        const char* path;
        Kind kind;
        const char *key, *ids, *name;
    } cases[]{
        // What desktops start, with and without the launcher's name, escaped or not.
        {"~/app.slice/app-gnome-org.gnome.Nautilus-4242.scope", Kind::application,
         "~/app-org.gnome.Nautilus.scope", "gnome-org.gnome.Nautilus org.gnome.Nautilus",
         "org.gnome.Nautilus"},
        {"~/app.slice/app-org.kde.kate-77a1.scope", Kind::application, "~/app-org.kde.kate.scope",
         "org.kde.kate", "org.kde.kate"},
        {"~/app.slice/app-gnome-google\\x2dchrome-12.scope/sub", Kind::application,
         "~/app-google-chrome.scope", "gnome-google-chrome google-chrome", "google-chrome"},
        {"~/app.slice/app-flatpak-org.mozilla.firefox-9.scope", Kind::application,
         "~/app-org.mozilla.firefox.scope", "flatpak-org.mozilla.firefox org.mozilla.firefox",
         "org.mozilla.firefox"},
        {"~/app.slice/app-firefox@f0a1b2.service", Kind::application, "~/app-firefox.service", "firefox",
         "firefox"},
        {"~/app.slice/app-nm\\x2dapplet@autostart.service", Kind::application, "~/app-nm-applet.service",
         "nm-applet", "nm-applet"},
        {"~/app.slice/app-dbus\\x2d:1.16\\x2dorg.x.slice/dbus-:1.16-org.gnome.Maps@0.service",
         Kind::application, "~/dbus-org.gnome.Maps.service", "org.gnome.Maps dbus-:1.16-org.x",
         "org.gnome.Maps"},
        // Snaps.
        {"~/app.slice/snap.firefox.firefox-8a-11.scope", Kind::snap, "/snap.firefox",
         "firefox_firefox firefox", "firefox"},
        {"~/snap.code.code.1b2c.scope", Kind::snap, "/snap.code", "code_code code", "code"},
        {"/system.slice/snap.lxd.daemon.service", Kind::snap, "/snap.lxd", "lxd_daemon lxd", "lxd"},
        // Services, those of templates together.
        {"/system.slice/ssh.service", Kind::service, "/ssh.service", "", "ssh"},
        {"/system.slice/system-getty.slice/getty@tty1.service", Kind::service, "/getty@.service", "",
         "getty"},
        {"/system.slice/docker.service/nested", Kind::service, "/docker.service", "", "docker"},
        {"~/session.slice/org.gnome.Shell@wayland.service", Kind::service, "~/org.gnome.Shell@.service",
         "org.gnome.Shell", "org.gnome.Shell"},
        {"~/app.slice/app-org.gnome.Terminal.slice/gnome-terminal-server.service", Kind::service,
         "~/gnome-terminal-server.service", "gnome-terminal-server org.gnome.Terminal",
         "gnome-terminal-server"},
        {"/openrc.sshd", Kind::service, "/openrc.sshd", "", "sshd"},
        // Containers and virtual machines; what runs inside has units of its own.
        {"/system.slice/docker-#.scope", Kind::container, "/system.slice/docker-#.scope", "",
         "docker aaaaaaaaaaaa"},
        {"/docker/#/system.slice/ssh.service", Kind::container, "/docker/#", "", "container aaaaaaaaaaaa"},
        {"~/user.slice/libpod-#.scope/container", Kind::container, "~/user.slice/libpod-#.scope", "",
         "podman aaaaaaaaaaaa"},
        {"/kubepods.slice/kubepods-pod7.slice/cri-containerd-#.scope", Kind::container,
         "/kubepods.slice/kubepods-pod7.slice/cri-containerd-#.scope", "", "containerd aaaaaaaaaaaa"},
        {"/system.slice:docker:#", Kind::container, "/system.slice:docker:#", "", "docker aaaaaaaaaaaa"},
        {"/lxc.payload.web/init.scope", Kind::container, "/lxc.payload.web", "", "web"},
        {"/machine.slice/systemd-nspawn@old.service/payload", Kind::container,
         "/machine.slice/systemd-nspawn@old.service", "", "old"},
        {"/machine.slice/machine-qemu\\x2d3\\x2dwin\\x2d11.scope/libvirt/emulator", Kind::container,
         "/machine.slice/machine-win-11.scope", "", "win-11"},
    };
    for (const auto& each : cases) {
        const GroupOwner owner = ownerOfGroup(written(each.path));
        EXPECT_EQ(owner.kind, each.kind) << each.path;
        EXPECT_EQ(owner.path, written(each.key)) << each.path;
        std::string ids;
        for (const auto& id : owner.ids) ids.append(ids.empty() ? "" : " ").append(id);
        EXPECT_EQ(ids, each.ids) << each.path;
        EXPECT_EQ(nameOfGroup(owner.path), each.name) << each.path;
    }
    // Groups in which people start what they like.
    for (const char* path :
         {"~/app.slice/app-org.gnome.Terminal.slice/vte-spawn-1b2c.scope",
          "~/app.slice/app-org.kde.konsole-1.scope/tab(33).scope",
          "/user.slice/user-1000.slice/session-3.scope", "~/app.slice/run-r1f2a.scope",
          "~/user.slice/libpod-conmon-#.scope", "~/init.scope", "~", "/init.scope", "/", ""}) {
        const GroupOwner owner = ownerOfGroup(written(path));
        EXPECT_TRUE(owner.kind == Kind::none && owner.path.empty()) << path;
    }
}

TEST(ControlGroup, OddUnitsAreHarmless) {
    for (const char* path : {"/app-.scope", "/app--.scope", "/dbus-:@.service", "/dbus-:1", "/snap..x.scope",
                             "/snap..scope", "/machine-.scope", "/lxc", "/@.service", "/-.scope",
                             "/systemd-nspawn@.service", "/app-\\x2.scope", "/\\xzz.service"}) {
        const GroupOwner owner = ownerOfGroup(path);
        EXPECT_EQ(owner.kind == Kind::none, owner.path.empty()) << path;
    }
    EXPECT_EQ(unescapeUnit("a\\x2db\\x2"), "a-b\\x2");
}

TEST(Sandbox, PathsAndFiles) {
    EXPECT_EQ(parseFlatpakInfo("[Application]\nname=org.x.Y\nruntime=r\n"), "org.x.Y");
    EXPECT_EQ(parseFlatpakInfo("[Runtime]\nname=org.x.Platform\n[Instance]\nname=z\n"), "");
    EXPECT_EQ(snapOfPath("/snap/code/180/usr/share/code/code"), "code");
    EXPECT_EQ(snapOfPath("/var/lib/snapd/snap/code/1/x"), "code");
    for (const char* path :
         {"/snap/core22/1/bin/sh", "/snap/bin/code", "/snap/snapd/1/x", "/snap", "/snap/x", "/home/snap/a/b"})
        EXPECT_EQ(snapOfPath(path), "") << path;
    EXPECT_EQ(appImageMount("/tmp/.mount_EditXy/usr/bin/edit"), "/tmp/.mount_EditXy");
    EXPECT_EQ(appImageMount("/tmp/.mount_"), "");
    EXPECT_EQ(parseEnvironment({"A=1\0APPIMAGE=/a b/c\0Z", 22}, "APPIMAGE"), "/a b/c");
    EXPECT_EQ(parseEnvironment("XAPPIMAGE=/x", "APPIMAGE"), "");
    const char* const images[][2] = {{"/home/u/Edit-1.4.2-x86_64.AppImage", "Edit"},
                                     {"Krita-v5.appimage", "Krita"},
                                     {"My-Paint_aarch64.AppImage", "My-Paint"},
                                     {"Obsidian.AppImage", "Obsidian"},
                                     {"-.AppImage", "-"},
                                     {".AppImage", ".AppImage"}};
    for (const auto& [path, name] : images) EXPECT_EQ(appImageName(path), name) << path;
}

TEST(Programs, LinksAndFolders) {
    TempRoot machine;
    machine.write("usr/lib/suite/program/start", "#!/bin/sh\n")
        .write("usr/bin/plain", "\177ELF")
        .link("usr/bin/suite", "../lib/suite/program/start")
        .link("usr/bin/absolute", "/usr/bin/plain")
        .link("bin", "usr/bin")
        .link("usr/bin/round", "round")
        .link("usr/bin/gone", "/nowhere");
    const auto root = machine.root();
    const Program suite = findProgram(root, "suite", {});
    EXPECT_EQ(suite.path, "/usr/lib/suite/program/start");
    EXPECT_TRUE(suite.isScript);
    EXPECT_EQ(findProgram(root, "absolute", {}).path, "/usr/bin/plain");
    EXPECT_EQ(findProgram(root, "/bin/plain", {}).path, "/usr/bin/plain");
    EXPECT_FALSE(findProgram(root, "plain", {}).isScript);
    for (const char* command : {"round", "gone", "missing", "", "../plain"})
        EXPECT_EQ(findProgram(root, command, {}).path, "") << command;

    const char* const folders[][2] = {
        {"/opt/vendor/editor/bin/edit", "/opt/vendor/editor"},
        {"/usr/lib/suite/program/start", "/usr/lib/suite/program"},
        {"/home/u/.local/share/Toolbox/apps/ide/bin/ide", "/home/u/.local/share/Toolbox/apps/ide"},
        {"/usr/bin/plain", ""},
        {"/opt/bin/x", ""},
        {"/usr/lib/x86_64-linux-gnu/qt5/bin/designer", ""},
        {"/usr/lib/jvm/java-17/bin/jconsole", ""},
        {"/home/u/Downloads/x", ""},
        {"", ""}};
    for (const auto& [program, folder] : folders) EXPECT_EQ(installFolder(program), folder) << program;
}

} // namespace
