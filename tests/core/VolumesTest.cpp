// Volumes: the mount table, which mounts are volumes, and servers that do not answer.
#include "core/Storage.h"
#include "core/Support.h"
#include "core/linux/MountTable.h"
#include "core/linux/VolumeAnswers.h"

#include <atomic>
#include <future>
#include <latch>
#include <sys/statvfs.h>

namespace {

using namespace quarn::testing;
using namespace std::chrono_literals;

TEST(MountInfo, Lines) {
    const auto mounts = parseMountInfo(
        "36 35 98:0 /mnt1 /mnt\\0402\\011x\\134 rw,noatime master:1 shared:2 - ext3 /dev/ro\\040ot rw\n"
        "1 1 0:5 /  /root rw,nosuid - rootfs rootfs rw\n"
        "hello\n20 1 8:1 / relative rw - ext4 /dev/sda1 rw\n21 1 8:1 / /x rw shared:1\n22 1 8:1 / /y rw -\n"
        "23 x 8:1 / /z rw - ext4 s rw\n"
        "24 1 8:1 / /a\\999b\\04 rw - ext4 /dev/sda1");
    EXPECT_EQ(joinedEach(mounts, &Mount::id, &Mount::parent, &Mount::device, &Mount::root, &Mount::point,
                         &Mount::type, &Mount::source),
              "36|35|98:0|/mnt1|/mnt 2\tx\\|ext3|/dev/ro ot 1|1|0:5|/|/root|rootfs|rootfs "
              "24|1|8:1|/|/a\\999b\\04|ext4|/dev/sda1 ");
}

TEST(MountTable, WhichMountsAreVolumes) {
    // Point, type and source of a mount above "/", of the whole or of a folder of a file system.
    const auto isVolume = [](const std::string& mount, const std::string& folder = "/") {
        const size_t blank = mount.find(' ');
        const std::string device = mount.find(" /dev/") == mount.npos ? "0:40 " : "8:2 ";
        const auto table =
            parseMountInfo("10 1 8:1 / / rw - ext4 /dev/sda1 rw\n11 10 " + device + folder + ' ' +
                           mount.substr(0, blank) + " rw -" + mount.substr(blank) + " rw\n");
        EXPECT_EQ(table.size(), 2u) << mount;
        return browsableMounts(table).size() == 2;
    };
    for (const char* mount :
         {"/home ext4 /dev/sda2", "/boot/efi vfat /dev/sda2", "/run/media/ann/STICK exfat /dev/sdb1",
          "/media/cdrom iso9660 /dev/sr0", "/tank zfs tank", "/srv/nfs nfs4 10.0.0.1:/export",
          "/srv/sshfs fuse.sshfs ann@host:/", "/mnt/own fuse.mergerfs a:b", "/mnt/windows fuseblk /dev/sda3",
          "/var/lib/docker ext4 /dev/sda3"})
        EXPECT_TRUE(isVolume(mount)) << mount;
    for (const char* mount :
         {"/proc proc proc", "/dev/shm tmpfs tmpfs", "/tmp tmpfs tmpfs",
          "/sys/fs/fuse/connections fusectl fusectl", "/mnt/auto autofs systemd-1",
          "/snap/core/1 squashfs /dev/loop1", "/opt/app squashfs /dev/loop1",
          "/var/lib/docker/overlay2/a/merged overlay overlay",
          "/run/user/1000/gvfs fuse.gvfsd-fuse gvfsd-fuse", "/home/ann/.gvfs fuse.gvfsd-fuse gvfsd-fuse",
          "/tmp/.mount_AppX fuse.App.AppImage App.AppImage", "/mnt/gone//deleted ext4 /dev/sda4"})
        EXPECT_FALSE(isVolume(mount)) << mount;
    EXPECT_TRUE(isVolume("/data btrfs sdc", "/@data"));
    EXPECT_FALSE(isVolume("/var/lib/docker/volumes/x ext4 /dev/sda3", "/x"));
    EXPECT_FALSE(isVolume("/etc/hosts ext4 /dev/sda3", "/x"));
    EXPECT_FALSE(isVolume("/run/netns/x nsfs nsfs", "net:[4026531840]"));
    EXPECT_FALSE(isVolume("/mnt/bound ext4 /dev/sda4", "/dir//deleted"));
    EXPECT_EQ(browsableMounts(parseMountInfo("10 1 0:30 / / rw - overlay overlay rw\n")).size(), 1u)
        << "the root is listed whatever it is made of";
}

TEST(MountTable, EachFileSystemOnceAndNothingHidden) {
    const auto points = [](const std::string& lines) {
        return joinedEach(browsableMounts(parseMountInfo(lines)), &Mount::point, &Mount::type);
    };
    const std::string root = "10 1 8:1 / / rw - ext4 /dev/sda1 rw\n";
    EXPECT_EQ(points(root + "11 10 8:1 /home /home rw - ext4 /dev/sda1 rw\n"), "/|ext4 ");
    EXPECT_EQ(points("11 10 8:1 /srv /srv rw - ext4 x rw\n12 10 8:1 / /mnt/disk rw - ext4 x rw\n"),
              "/mnt/disk|ext4 ")
        << "the whole before a folder of it";
    EXPECT_EQ(points("11 10 8:1 / /mnt/long rw - ext4 x rw\n12 10 8:1 / /m rw - ext4 x rw\n"), "/m|ext4 ");
    EXPECT_EQ(points(root + "11 10 8:2 / /m rw - ext4 x rw\n12 11 8:3 / /m rw - xfs y rw\n"),
              "/|ext4 /m|xfs ")
        << "the upper of two mounts on one folder";
    EXPECT_EQ(points(root + "11 10 8:2 / /m/s rw - ext4 x rw\n12 10 0:9 / /m rw - tmpfs y rw\n"), "/|ext4 ")
        << "something else was mounted over the way to it";
    EXPECT_EQ(points(root + "12 10 0:9 / /m rw - tmpfs y rw\n11 12 8:2 / /m/s rw - ext4 x rw\n"),
              "/|ext4 /m/s|ext4 ");
    EXPECT_EQ(points("11 12 8:2 / /m/s rw - ext4 x rw\n12 11 8:3 / /m rw - ext4 y rw\n"),
              "/m/s|ext4 /m|ext4 ")
        << "parents in a ring end somewhere";
}

TEST(MountTable, WhatMayStall) {
    const auto table = parseMountInfo("10 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                                      "11 10 0:40 / /srv rw - nfs4 host:/x rw\n"
                                      "12 11 8:2 / /srv/disk rw - ext4 /dev/sdb1 rw\n"
                                      "13 10 0:41 / /mnt/fuse rw - fuse.encfs encfs rw\n"
                                      "14 10 8:3 / /srvx rw - ext4 /dev/sdc1 rw\n"
                                      "15 10 0:42 / /b rw - fuse.s3fs bucket rw\n"
                                      "16 10 0:43 / /dav rw - fuse https://host/x rw\n"
                                      "17 10 0:44 / /pool rw - fuse.mergerfs a:b rw\n"
                                      "18 10 0:45 / /enc rw - fuse.gocryptfs /home/a:b rw\n");
    std::string stalling, remote;
    for (const auto& mount : table) {
        if (canStall(mount, table)) stalling += mount.point + ' ';
        if (isRemote(mount)) remote += mount.point + ' ';
    }
    EXPECT_EQ(stalling, "/srv /srv/disk /mnt/fuse /b /dav /pool /enc ")
        << "the way to /srv/disk leads through a server";
    EXPECT_EQ(remote, "/srv /b /dav ");
}

/// A file system at "/hang" that answers when it is let go, and others that answer at once.
struct Server {
    VolumeAnswers::Ask ask() {
        return [this](const std::string& point) -> std::optional<VolumeSpace> {
            if (point == "/refuses") return {};
            if (point != "/hang") return VolumeSpace{100, 40};
            ++asked;
            letGo.wait();
            return VolumeSpace{1000, 400};
        };
    }
    std::atomic<int> asked = 0;
    std::latch hanging{1}, letGo{1};
};

using State = VolumeAnswers::Answer::State;

TEST(VolumeAnswers, AFirstCallWaitsForWhoAnswersAndNoOtherCallWaits) {
    Server server;
    VolumeAnswers volumes(server.ask(), 1h);
    const auto first = volumes.answers({{"1", "/quick"}, {"2", "/refuses"}});
    EXPECT_EQ(first[0].state, State::known);
    EXPECT_EQ(first[0].space.available, 40u);
    EXPECT_EQ(first[1].state, State::refused);

    const std::vector<VolumeAnswers::Question> hanging{{"1", "/quick"}, {"3", "/hang"}};
    auto waiting = std::async(std::launch::async, [&] { return volumes.answers(hanging); });
    while (server.asked == 0) std::this_thread::yield();
    for (int call = 0; call < 100; ++call) {
        const auto answers = volumes.answers(hanging); // would take an hour if it waited
        EXPECT_EQ(answers[0].state, State::known);
        EXPECT_EQ(answers[1].state, State::unknown);
    }
    EXPECT_EQ(server.asked, 1) << "one thread for a server that hangs, however often it is asked";
    server.letGo.count_down();
    EXPECT_EQ(waiting.get()[1].space.total, 1000u);
}

TEST(VolumeAnswers, TheLastAnswerStaysWhileAServerHangsOrRefuses) {
    const auto server = std::make_shared<Server>(); // the last asking thread may end after the test
    const auto answerHangAnswerAndRefuse = [server](const std::string&) -> std::optional<VolumeSpace> {
        const uint64_t question = static_cast<uint64_t>(++server->asked);
        if (question > 2) return {};
        if (question == 2) {
            server->hanging.count_down();
            server->letGo.wait();
        }
        return VolumeSpace{question, 0};
    };
    VolumeAnswers volumes(answerHangAnswerAndRefuse, 1h);
    const auto total = [&] { return volumes.answers({{"1", "/srv"}})[0].space.total; };
    EXPECT_EQ(total(), 1u);
    EXPECT_EQ(total(), 1u);
    server->hanging.wait();
    EXPECT_EQ(total(), 1u);
    server->letGo.count_down();
    while (total() < 2) std::this_thread::yield();
    while (server->asked < 4) total();
    EXPECT_EQ(total(), 2u);
    EXPECT_EQ(volumes.answers({{"1", "/srv"}})[0].state, State::known);
}

TEST(VolumeAnswers, PatienceEndsAndAThreadOutlivesItsOwner) {
    auto server = std::make_shared<Server>();
    const std::weak_ptr<Server> alive = server;
    {
        VolumeAnswers volumes([server, ask = server->ask()](const std::string& point) { return ask(point); },
                              1ms);
        EXPECT_EQ(volumes.answers({{"3", "/hang"}})[0].state, State::unknown);
        EXPECT_TRUE(volumes.answers({}).empty());
    }
    while (server->asked == 0) std::this_thread::yield();
    server->letGo.count_down();
    server.reset();
    while (!alive.expired()) std::this_thread::yield();
}

TEST(Volumes, TheRootOfThisMachineIsListedWithItsRoom) {
    if (readFile("/proc/self/mounts").find(" / ") == std::string::npos)
        GTEST_SKIP() << "the root is not mounted, as in a chroot";
    struct statvfs status {};
    ASSERT_EQ(::statvfs("/", &status), 0);
    const auto volumes = readVolumes(SystemRoot::host());
    const auto root =
        std::find_if(volumes.begin(), volumes.end(), [](const auto& v) { return v.mount == "/"; });
    ASSERT_NE(root, volumes.end());
    EXPECT_EQ(root->total, uint64_t{status.f_blocks} * status.f_frsize);
    EXPECT_LE(root->freeBytes, root->total);
    EXPECT_EQ(root->used, root->total - root->freeBytes);
}

TEST(CapturedVolumes, AreListedWithUnknownRoom) {
    EXPECT_EQ(joinedEach(readVolumes(capturedRoot("hosts/mixed-disks")), &VolumeInfo::mount,
                         &VolumeInfo::device, &VolumeInfo::fs, &VolumeInfo::total),
              "/|/dev/dm-2|ext4|0 /boot|/dev/sda3|ext2|0 ");
}

} // namespace
