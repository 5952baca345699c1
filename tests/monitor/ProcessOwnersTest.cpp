#include "monitor/ProcessOwners.h"

#include "monitor/Processes.h"
#include "support/TempRoot.h"

namespace quarn::testing {
namespace {

/// A captured machine with one entry in its menus, whose processes can be moved between control groups.
class Machine : public TempRoot {
public:
    Machine() {
        write("usr/share/applications/web.desktop",
              "[Desktop Entry]\nType=Application\nName=Web\nExec=web-start\n");
        write("usr/lib/systemd/system/bus.service", "");
    }
    void move(int64_t pid, const std::string& group) {
        write("proc/" + std::to_string(pid) + "/cgroup", "0::" + group + "\n");
    }
    static ProcInfo process(int64_t pid, const char* path, uint64_t startSeconds = 100) {
        ProcInfo info = processOf(pid, path);
        info.path = path;
        info.startTimeMicros = startSeconds * 1'000'000;
        return info;
    }

    ProcessOwners owners{std::make_shared<AppOwnerIndex>(root())};

    std::string update(const std::vector<ProcInfo>& processes, double now) {
        std::string text;
        for (const auto& owner : owners.update(processes, now))
            text.append(text.empty() ? "" : " ")
                .append(owner.app.view().substr(owner.app.view().rfind('/') + 1));
        return text;
    }
};

constexpr const char* web = "/user.slice/user-1.slice/user@1.service/app.slice/app-web-1.scope";

TEST(ProcessOwners, AreKeptWhileAProcessStaysTheSame) {
    Machine machine;
    machine.move(10, web);
    machine.move(12, "/bus.service");
    std::vector<ProcInfo> list{Machine::process(10, "/usr/bin/a"), Machine::process(11, "/usr/bin/b"),
                               Machine::process(12, "/usr/bin/c")};
    EXPECT_EQ(machine.update(list, 1000), "web.desktop b bus.service");
    EXPECT_FALSE(machine.owners.owners()[1].bundle);

    // What the kernel says is asked for once, however the list around a process changes.
    machine.move(10, "/bus.service");
    machine.move(11, web);
    machine.move(12, web);
    EXPECT_EQ(machine.update(list, 1001), "web.desktop b bus.service");
    list.erase(list.begin());
    list.push_back(Machine::process(13, "/opt/Mail.app/d"));
    EXPECT_EQ(machine.update(list, 1002), "b bus.service Mail.app");
    EXPECT_EQ(machine.owners.owners().size(), 3U);

    list[0].path = "/usr/bin/other"; // it runs another program now
    EXPECT_EQ(machine.update(list, 1003), "web.desktop bus.service Mail.app");
    list[1] = Machine::process(12, "/usr/bin/c", 200); // its pid is another's now
    list.insert(list.begin(), Machine::process(10, "/usr/bin/a"));
    EXPECT_EQ(machine.update(list, 1004), "bus.service web.desktop web.desktop Mail.app");
    std::swap(list[0], list[3]); // out of order: slower, still right
    EXPECT_EQ(machine.update(list, 1005), "Mail.app web.desktop web.desktop bus.service");
    EXPECT_EQ(machine.update({}, 1006), "");
}

TEST(ProcessOwners, AYoungProcessIsAskedAboutAgainOnce) {
    Machine machine;
    machine.move(10, "/bus.service"); // the bus starts it, then the desktop moves it
    const std::vector<ProcInfo> list{Machine::process(10, "/usr/bin/a", 1000)};
    EXPECT_EQ(machine.update(list, 1001), "bus.service");
    machine.move(10, web);
    EXPECT_EQ(machine.update(list, 1004), "bus.service");
    EXPECT_EQ(machine.update(list, 1005), "web.desktop");
    machine.move(10, "/bus.service");
    EXPECT_EQ(machine.update(list, 1020), "web.desktop");
}

TEST(ProcessOwners, EveryProcessHasItsTurn) {
    Machine machine;
    machine.move(10, "/bus.service");
    const std::vector<ProcInfo> list{Machine::process(10, "/usr/bin/a")};
    machine.update(list, 1000);
    machine.move(10, web);
    for (int i = 0; i < 1024; ++i) machine.update(list, 1000);
    EXPECT_EQ(machine.update(list, 1000), "web.desktop");
}

TEST(ProcessOwners, FollowTheMenusAFewAtATime) {
    Machine machine;
    std::vector<ProcInfo> list;
    for (int64_t pid = 1; pid <= 100; ++pid) list.push_back(Machine::process(pid, "/usr/bin/new"));
    machine.update(list, 1000);
    machine.write("usr/share/applications/new.desktop",
                  "[Desktop Entry]\nType=Application\nName=New\nExec=new\n");
    const auto renewed = [&](double now) {
        size_t count = 0;
        for (const auto& owner : machine.owners.update(list, now)) count += owner.bundle ? 1 : 0;
        return count;
    };
    EXPECT_LE(renewed(1020), 65U);
    EXPECT_EQ(renewed(1021), 100U);
}

} // namespace
} // namespace quarn::testing
