// What control groups, paths and small files tell of the application behind a process.
#include "core/linux/ControlGroup.h"

#include "core/linux/Programs.h"
#include "core/linux/Sandbox.h"
#include "support/TempRoot.h"

namespace sysinfo::platform {
namespace {

using Kind = GroupOwner::Kind;

TEST(ControlGroup, IsTheServiceManagers) {
    const struct {
        const char *text, *path;
    } cases[]{
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
    for (const auto& each : cases) EXPECT_EQ(parseControlGroup(each.text), each.path) << each.text;
}

constexpr const char* session = "/user.slice/user-1000.slice/user@1000.service";
const std::string docker(64, 'a');

TEST(ControlGroup, TellsTheUnit) {
    const std::string user = session;
    const struct {
        std::string path;
        Kind kind;
        std::string key, ids, name;
    } cases[]{
        // What desktops start, with and without the launcher's name, escaped or not.
        {user + "/app.slice/app-gnome-org.gnome.Nautilus-4242.scope", Kind::application,
         user + "/app-org.gnome.Nautilus.scope", "gnome-org.gnome.Nautilus org.gnome.Nautilus",
         "org.gnome.Nautilus"},
        {user + "/app.slice/app-org.kde.kate-77a1.scope", Kind::application, user + "/app-org.kde.kate.scope",
         "org.kde.kate", "org.kde.kate"},
        {user + "/app.slice/app-gnome-google\\x2dchrome-12.scope/sub", Kind::application,
         user + "/app-google-chrome.scope", "gnome-google-chrome google-chrome", "google-chrome"},
        {user + "/app.slice/app-flatpak-org.mozilla.firefox-9.scope", Kind::application,
         user + "/app-org.mozilla.firefox.scope", "flatpak-org.mozilla.firefox org.mozilla.firefox",
         "org.mozilla.firefox"},
        {user + "/app.slice/app-firefox@f0a1b2.service", Kind::application, user + "/app-firefox.service",
         "firefox", "firefox"},
        {user + "/app.slice/app-nm\\x2dapplet@autostart.service", Kind::application,
         user + "/app-nm-applet.service", "nm-applet", "nm-applet"},
        {user + "/app.slice/app-dbus\\x2d:1.16\\x2dorg.x.slice/dbus-:1.16-org.gnome.Maps@0.service",
         Kind::application, user + "/dbus-org.gnome.Maps.service", "org.gnome.Maps dbus-:1.16-org.x",
         "org.gnome.Maps"},
        // Snaps.
        {user + "/app.slice/snap.firefox.firefox-8a-11.scope", Kind::snap, "/snap.firefox",
         "firefox_firefox firefox", "firefox"},
        {user + "/snap.code.code.1b2c.scope", Kind::snap, "/snap.code", "code_code code", "code"},
        {"/system.slice/snap.lxd.daemon.service", Kind::snap, "/snap.lxd", "lxd_daemon lxd", "lxd"},
        // Services, those of templates together.
        {"/system.slice/ssh.service", Kind::service, "/ssh.service", "", "ssh"},
        {"/system.slice/system-getty.slice/getty@tty1.service", Kind::service, "/getty@.service", "",
         "getty"},
        {"/system.slice/docker.service/nested", Kind::service, "/docker.service", "", "docker"},
        {user + "/session.slice/org.gnome.Shell@wayland.service", Kind::service,
         user + "/org.gnome.Shell@.service", "org.gnome.Shell", "org.gnome.Shell"},
        {user + "/app.slice/app-org.gnome.Terminal.slice/gnome-terminal-server.service", Kind::service,
         user + "/gnome-terminal-server.service", "gnome-terminal-server org.gnome.Terminal",
         "gnome-terminal-server"},
        {"/openrc.sshd", Kind::service, "/openrc.sshd", "", "sshd"},
        // Containers and virtual machines; what runs inside has units of its own.
        {"/system.slice/docker-" + docker + ".scope", Kind::container,
         "/system.slice/docker-" + docker + ".scope", "", "docker aaaaaaaaaaaa"},
        {"/docker/" + docker + "/system.slice/ssh.service", Kind::container, "/docker/" + docker, "",
         "container aaaaaaaaaaaa"},
        {user + "/user.slice/libpod-" + docker + ".scope/container", Kind::container,
         user + "/user.slice/libpod-" + docker + ".scope", "", "podman aaaaaaaaaaaa"},
        {"/kubepods.slice/kubepods-pod7.slice/cri-containerd-" + docker + ".scope", Kind::container,
         "/kubepods.slice/kubepods-pod7.slice/cri-containerd-" + docker + ".scope", "",
         "containerd aaaaaaaaaaaa"},
        {"/system.slice:docker:" + docker, Kind::container, "/system.slice:docker:" + docker, "",
         "docker aaaaaaaaaaaa"},
        {"/lxc.payload.web/init.scope", Kind::container, "/lxc.payload.web", "", "web"},
        {"/machine.slice/systemd-nspawn@old.service/payload", Kind::container,
         "/machine.slice/systemd-nspawn@old.service", "", "old"},
        {"/machine.slice/machine-qemu\\x2d3\\x2dwin\\x2d11.scope/libvirt/emulator", Kind::container,
         "/machine.slice/machine-win-11.scope", "", "win-11"},
        // Groups in which people start what they like.
        {user + "/app.slice/app-org.gnome.Terminal.slice/vte-spawn-1b2c.scope", Kind::none, "", "", ""},
        {user + "/app.slice/app-org.kde.konsole-1.scope/tab(33).scope", Kind::none, "", "", ""},
        {"/user.slice/user-1000.slice/session-3.scope", Kind::none, "", "", ""},
        {user + "/app.slice/run-r1f2a.scope", Kind::none, "", "", ""},
        {user + "/user.slice/libpod-conmon-" + docker + ".scope", Kind::none, "", "", ""},
        {user + "/init.scope", Kind::none, "", "", ""},
        {user, Kind::none, "", "", ""},
        {"/init.scope", Kind::none, "", "", ""},
        {"/", Kind::none, "", "", ""},
        {"", Kind::none, "", "", ""},
    };
    for (const auto& each : cases) {
        const GroupOwner owner = ownerOfGroup(each.path);
        EXPECT_EQ(owner.kind, each.kind) << each.path;
        EXPECT_EQ(owner.path, each.key) << each.path;
        std::string ids;
        for (const auto& id : owner.ids) ids.append(ids.empty() ? "" : " ").append(id);
        EXPECT_EQ(ids, each.ids) << each.path;
        EXPECT_EQ(nameOfGroup(owner.path), each.name) << each.path;
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
    const struct {
        const char *path, *name;
    } images[]{{"/home/u/Edit-1.4.2-x86_64.AppImage", "Edit"},
               {"Krita-v5.appimage", "Krita"},
               {"My-Paint_aarch64.AppImage", "My-Paint"},
               {"Obsidian.AppImage", "Obsidian"},
               {"-.AppImage", "-"},
               {".AppImage", ".AppImage"}};
    for (const auto& each : images) EXPECT_EQ(appImageName(each.path), each.name) << each.path;
}

TEST(Programs, LinksAndFolders) {
    quarn::testing::TempRoot machine;
    machine.write("usr/lib/suite/program/start", "#!/bin/sh\n")
        .write("usr/bin/plain", "\x7f"
                                "ELF")
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

    const struct {
        const char *program, *folder;
    } folders[]{{"/opt/vendor/editor/bin/edit", "/opt/vendor/editor"},
                {"/usr/lib/suite/program/start", "/usr/lib/suite/program"},
                {"/home/u/.local/share/Toolbox/apps/ide/bin/ide", "/home/u/.local/share/Toolbox/apps/ide"},
                {"/usr/bin/plain", ""},
                {"/opt/bin/x", ""},
                {"/usr/lib/x86_64-linux-gnu/qt5/bin/designer", ""},
                {"/usr/lib/jvm/java-17/bin/jconsole", ""},
                {"/home/u/Downloads/x", ""},
                {"", ""}};
    for (const auto& each : folders) EXPECT_EQ(installFolder(each.program), each.folder) << each.program;
}

} // namespace
} // namespace sysinfo::platform
