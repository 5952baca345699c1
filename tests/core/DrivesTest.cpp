// The drives of this and of captured machines: which they are, what they count, what the hardware says.
#include "core/Storage.h"
#include "core/linux/BlockDevices.h"
#include "core/linux/DiskStats.h"
#include "core/linux/DriveBus.h"
#include "core/linux/UdevRecord.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo;
using quarn::testing::TempRoot;

TEST(DiskStats, LinesOfAllKernelsAndNone) {
    struct Case {
        const char* counters;
        bool ok;
        uint64_t written;
    };
    for (const auto& c : {
             Case{" 1 0 8 2 3 0 16 4 0 5 6", true, 16 * 512},
             Case{" 1 0 8 2 3 0 16 4 0 5 6 7 0 8 9", true, 16 * 512},
             Case{" 1 0 8 2 3 0 16 4 0 5 6 7 0 8 9 10 11", true, 16 * 512},
             Case{" 1 0 8 2 3 0 16 4 0 5", false, 0},
             Case{" 1 0 8 2 3 0 sixteen 4 0 5 6", false, 0},
             Case{" 1 0 8 2 3 0 -16 4 0 5 6", false, 0},
             Case{"", false, 0},
         }) {
        const auto stats = platform::readDriveStats(c.counters);
        EXPECT_EQ(stats.ok, c.ok) << c.counters;
        EXPECT_EQ(stats.bytesWritten, c.written) << c.counters;
    }
    std::string_view text = "rubbish\n\n 8 x sda 1\n  8 0\n   8   16 sdb 5 6\n259 0 nvme0n1";
    EXPECT_EQ(platform::takeDiskLine(text)->name, "sdb");
    EXPECT_EQ(platform::takeDiskLine(text)->name, "nvme0n1");
    EXPECT_FALSE(platform::takeDiskLine(text));
}

TEST(Drives, TheNameDecidesWhereNothingElseCan) {
    const SystemRoot nothing("/nonexistent");
    for (const auto* name : {"sda", "sdaa", "vda", "xvdb", "hda", "nvme0n1", "nvme10n2", "mmcblk0", "dasda",
                             "pmem0", "cciss/c0d0"})
        EXPECT_TRUE(platform::isPhysicalDrive(nothing, name)) << name;
    for (const auto* name :
         {"sda1",        "sdaa12",       "vda2",      "nvme0n1p2",    "mmcblk0p1", "mmcblk0boot0",
          "mmcblk0rpmb", "mmcblk0gp1p1", "nvme0c1n1", "cciss/c0d0p1", "loop0",     "ram3",
          "zram0",       "dm-0",         "md127",     "md_d0",        "nbd3",      "sr0",
          "fd0",         "zd16",         "drbd0",     "mtdblock0",    "rbd0",      "bcache0"})
        EXPECT_FALSE(platform::isPhysicalDrive(nothing, name)) << name;
}

TEST(Drives, SysfsDecidesWhereItIsThere) {
    TempRoot machine;
    machine
        .link("sys/block/sda", "../devices/pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block/sda")
        .link("sys/block/nvme0n1", "../devices/virtual/nvme-subsystem/nvme-subsys0/nvme0n1")
        .link("sys/block/newkind0", "../devices/virtual/block/newkind0")
        .write("sys/block/cciss!c0d0/size", "8")
        .write("sys/class/block/odd7/partition", "7");
    EXPECT_EQ(platform::physicalDrives(machine.root()),
              (std::vector<std::string>{"sda", "nvme0n1", "cciss/c0d0"}));
    EXPECT_FALSE(platform::isPhysicalDrive(machine.root(), "odd7"));
    EXPECT_EQ(platform::driveSize(machine.root(), "cciss/c0d0"), 4096u);
}

TEST(CapturedDrives, CountersOfAMixedTableAsPublished) {
    const auto readers = platform::openReaders(SystemRoot(QUARN_FIXTURES "/hosts/mixed-disks"));
    std::vector<platform::DriveCounters> drives;
    ASSERT_TRUE(platform::readDriveCounters(*readers, drives));
    struct Published {
        const char* name;
        double readBytes, writtenBytes, reads, writes, readSeconds, writeSeconds;
    };
    const std::vector<Published> published{
        {"sda", 5.13713216512e+11, 2.58916880384e+11, 2.5354637e+07, 2.8444756e+07, 18492.372, 63877.96},
        {"mmcblk0", 798720, 0, 192, 0, 0.156, 0},
        {"vda", 1.6727491584e+10, 1.0938236928e+11, 1.775784e+06, 6.038856e+06, 8655.768, 2.069221364e+06},
        {"nvme0n1", 2.377714176e+09, 2.0199236096e+10, 47114, 1.07832e+06, 21.65, 1011.053},
        {"sdb", 4.944782848e+09, 1.01012736e+09, 326552, 41822, 0.084, 5.007},
        {"sdc", 8.48782848e+08, 8.852736e+07, 126552, 11822, 0.014, 1.007},
    };
    ASSERT_EQ(drives.size(), published.size());
    for (size_t i = 0; i < drives.size(); ++i) {
        const auto& [name, stats] = drives[i];
        EXPECT_EQ(name, published[i].name);
        EXPECT_EQ(static_cast<double>(stats.bytesRead), published[i].readBytes) << name;
        EXPECT_EQ(static_cast<double>(stats.bytesWritten), published[i].writtenBytes) << name;
        EXPECT_EQ(static_cast<double>(stats.opsRead), published[i].reads) << name;
        EXPECT_EQ(static_cast<double>(stats.opsWritten), published[i].writes) << name;
        EXPECT_DOUBLE_EQ(static_cast<double>(stats.timeReadNs) / 1e9, published[i].readSeconds) << name;
        EXPECT_DOUBLE_EQ(static_cast<double>(stats.timeWriteNs) / 1e9, published[i].writeSeconds) << name;
    }
}

TEST(Drives, TheSetOfDrivesIsFollowed) {
    TempRoot machine;
    const auto table = [&](const std::string& names) {
        std::string text;
        for (char c : names) text += std::string("8 0 sd") + c + " 1 0 2 0 0 0 0 0 0 0 0\n7 0 loop0 0\n";
        machine.write("proc/diskstats", text);
    };
    const auto readers = platform::openReaders(machine.root());
    std::vector<platform::DriveCounters> drives;
    for (const std::string names : {"ab", "ab", "a", "abc", "cab", "", "b"}) {
        table(names);
        ASSERT_TRUE(platform::readDriveCounters(*readers, drives));
        std::string seen;
        for (const auto& drive : drives) seen += drive.name.back();
        EXPECT_EQ(seen, names);
    }
}

TEST(DriveBus, PlacesInTheDeviceTree) {
    struct Case {
        const char* path;
        const char* interconnect;
        const char* architecture;
        bool internal;
    };
    const std::string pci = "sys/devices/pci0000:00/0000:00:14.0/";
    for (const auto& c : {
             Case{"0000:01:00.0/nvme/nvme0/nvme0n1", "NVMe", "NVMe", true},
             Case{"ata1/host0/target0:0:0/0:0:0:0/block/sda", "SATA", "SATA (AHCI)", true},
             Case{"usb1/1-2/1-2:1.0/host6/target6:0:0/6:0:0:0/block/sdb", "USB", "USB Mass Storage", false},
             Case{"usb2/2-1/2-1:1.0/rtsx_usb_sdmmc.0/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0", "Secure Digital",
                  "SD card reader", false},
             Case{"virtio1/block/vda", "Virtio", "Virtio", true},
             Case{"virtio2/host2/target2:0:0/2:0:0:0/block/sda", "Virtio", "Virtio", true},
             Case{"host0/port-0:0/end_device-0:0/target0:0:0/0:0:0:0/block/sda", "SAS", "SAS", true},
             Case{"host3/session1/target3:0:0/3:0:0:1/block/sdd", "iSCSI", "iSCSI", false},
             Case{"host0/target0:2:0/0:2:0:0/block/sda", "SCSI", "SCSI", true},
             Case{"somewhere/else", "", "", true},
         }) {
        const auto bus = platform::driveBus(pci + c.path);
        EXPECT_EQ(bus.interconnect, c.interconnect) << c.path;
        EXPECT_EQ(bus.architecture, c.architecture) << c.path;
        EXPECT_EQ(bus.place == platform::DriveBus::Place::internal, c.internal) << c.path;
    }
    EXPECT_EQ(platform::pciFunction(pci + "0000:01:00.0/nvme/nvme0"), pci + "0000:01:00.0");
    EXPECT_EQ(platform::pciFunction("sys/devices/platform/soc/mmc_host/mmc0/mmc0:0001"), "");
}

TEST(DriveBus, PcieLinks) {
    struct Case {
        const char *speed, *width, *link;
    };
    for (const auto& c : {
             Case{"2.5 GT/s PCIe", "1", "PCIe 1.0 x1"},
             Case{"5.0 GT/s PCIe", "2", "PCIe 2.0 x2"},
             Case{"8 GT/s", "4", "PCIe 3.0 x4"},
             Case{"16.0 GT/s PCIe", "4", "PCIe 4.0 x4"},
             Case{"32.0 GT/s PCIe", "4", "PCIe 5.0 x4"},
             Case{"64.0 GT/s PCIe", "4", "PCIe x4"},
             Case{"Unknown", "8", "PCIe x8"},
             Case{"16.0 GT/s PCIe", "0", ""},
             Case{"16.0 GT/s PCIe", "63", ""},
             Case{"", "", ""},
         })
        EXPECT_EQ(platform::pcieLink(c.speed, c.width), c.link);
}

TEST(UdevRecord, PropertiesAndEscapes) {
    const std::string_view record =
        "S:disk/by-id/x\nE:ID_MODEL=A_B\nE:ID_MODEL_ENC=A\\x20B\\x20\\x20\nG:systemd\n";
    EXPECT_EQ(platform::udevProperty(record, "ID_MODEL"), "A_B");
    EXPECT_FALSE(platform::udevProperty(record, "ID_"));
    EXPECT_EQ(platform::decodeUdev(*platform::udevProperty(record, "ID_MODEL_ENC")), "A B");
    EXPECT_EQ(platform::decodeUdev("a\\x2"), "a\\x2");
    EXPECT_EQ(platform::decodeUdev("\\xzz\\"), "\\xzz\\");
}

/// A machine with one drive of each sort.
class DescribedDrives : public ::testing::Test {
protected:
    void add(const std::string& name, const std::string& path, const std::string& sectors) {
        machine.link("sys/block/" + name, "../devices/" + path);
        write(path, "size", sectors);
        table += "8 0 " + name + " 1 0 10 0 0 0 20 0 0 0 0\n";
        machine.write("proc/diskstats", table);
    }
    void write(const std::string& path, const std::string& attribute, const std::string& value) {
        machine.write("sys/devices/" + path + "/" + attribute, value + "\n");
    }
    SCDiskDevice only() {
        SCDiskDevice device{};
        EXPECT_EQ(diskDevices(machine.root(), &device, 1), 1);
        return device;
    }

    TempRoot machine;
    std::string table;
    const std::string controller = "pci0000:00/0000:00:1d.0/0000:01:00.0";
};

TEST_F(DescribedDrives, NvmeWithItsLink) {
    const std::string path = controller + "/nvme/nvme0/nvme0n1";
    add("nvme0n1", path, "1000");
    machine.link("sys/devices/" + path + "/device", "../../nvme0");
    write(controller + "/nvme/nvme0", "model", "Fast SSD 1TB                            ");
    write(path, "queue/rotational", "0");
    write(controller, "current_link_speed", "8.0 GT/s PCIe");
    write(controller, "current_link_width", "4");
    write(controller, "power/runtime_status", "active");
    const auto disk = only();
    EXPECT_STREQ(disk.bsd, "nvme0n1");
    EXPECT_STREQ(disk.name, "Fast SSD 1TB");
    EXPECT_STREQ(disk.medium, "SSD");
    EXPECT_STREQ(disk.architecture, "NVMe");
    EXPECT_STREQ(disk.link, "PCIe 3.0 x4");
    EXPECT_EQ(disk.size, 512'000u);
    EXPECT_EQ(disk.readBytes, 5120u);
    EXPECT_EQ(disk.writeBytes, 10240u);
    EXPECT_EQ(disk.internalDisk, 1);
    EXPECT_EQ(disk.removable, 0);

    write(controller, "power/runtime_status", "suspended");
    EXPECT_STREQ(only().link, "") << "asking would wake the controller";
    write(controller, "removable", "removable");
    EXPECT_EQ(only().internalDisk, 0) << "behind a port for plugging in";
}

TEST_F(DescribedDrives, NvmeWithSeveralControllers) {
    const std::string subsystem = "virtual/nvme-subsystem/nvme-subsys0";
    add("nvme0n1", subsystem + "/nvme0n1", "1000");
    table += "259 1 nvme0c0n1 5 0 50 0 0 0 0 0 0 0 0\n";
    machine.write("proc/diskstats", table)
        .link("sys/block/nvme0c0n1", "../devices/" + controller + "/nvme/nvme0/nvme0c0n1")
        .link("sys/devices/" + subsystem + "/nvme0n1/device", "..")
        .link("sys/devices/" + subsystem + "/nvme0", "../../../" + controller + "/nvme/nvme0");
    write(controller, "current_link_speed", "16.0 GT/s PCIe");
    write(controller, "current_link_width", "2");
    write(subsystem, "model", "Shared");
    EXPECT_STREQ(only().link, "PCIe 4.0 x2");
    EXPECT_STREQ(only().name, "Shared");
    SCDiskDevice devices[4];
    EXPECT_EQ(diskDevices(machine.root(), devices, 4), 1) << "the hidden path is no drive of its own";
}

TEST_F(DescribedDrives, NamesAndMedia) {
    const std::string ata = "pci0000:00/0000:00:17.0/ata3/host2/target2:0:0/2:0:0:0";
    add("sda", ata + "/block/sda", "100");
    machine.link("sys/devices/" + ata + "/block/sda/device", "../..");
    write(ata, "vendor", "ATA     ");
    write(ata, "model", "Long Model Name ");
    write(ata + "/block/sda", "queue/rotational", "1");
    write(ata + "/block/sda", "dev", "8:0");
    EXPECT_STREQ(only().name, "Long Model Name");
    EXPECT_STREQ(only().medium, "HDD");
    EXPECT_STREQ(only().link, "") << "only NVMe drives have a link of their own";
    machine.write("run/udev/data/b8:0", "E:ID_MODEL_ENC=Long\\x20Model\\x20Name\\x204000\n");
    EXPECT_STREQ(only().name, "Long Model Name 4000");
    write(ata, "vendor", "Maker");
    EXPECT_STREQ(only().name, "Maker Long Model Name");
    write(ata, "vendor", "Model");
    EXPECT_STREQ(only().name, "Long Model Name") << "the maker is in the name";
    write(ata, "vendor", "QEMU");
    EXPECT_STREQ(only().medium, "") << "a virtual machine's disk does not rotate";
}

TEST_F(DescribedDrives, SticksAndCards) {
    const std::string usb = "pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/host6/target6:0:0/6:0:0:0/block/sdb";
    add("sdb", usb, "100");
    write(usb, "removable", "1");
    write(usb, "queue/rotational", "1");
    EXPECT_STREQ(only().medium, "") << "sticks claim to rotate";
    EXPECT_EQ(only().removable, 1);
    EXPECT_EQ(only().internalDisk, 0);
    write(usb, "size", "0");
    SCDiskDevice devices[2];
    EXPECT_EQ(diskDevices(machine.root(), devices, 2), 0) << "a reader without a card";
    EXPECT_EQ(platform::readDriveCapacity(machine.root()).disks, 0u);

    const std::string eMmc = "platform/soc/mmc_host/mmc0/mmc0:0001";
    add("mmcblk0", eMmc + "/block/mmcblk0", "100");
    machine.link("sys/devices/" + eMmc + "/block/mmcblk0/device", "../..");
    write(eMmc, "type", "MMC");
    write(eMmc, "name", "DG4064");
    EXPECT_STREQ(only().name, "DG4064");
    EXPECT_STREQ(only().architecture, "eMMC");
    EXPECT_EQ(only().internalDisk, 1);
}

TEST_F(DescribedDrives, AListingAsksTheHardwareOnlyWhenTheDrivesChange) {
    const std::string path = "pci0000:00/0000:00:02.0/virtio1/block/vda";
    add("vda", path, "100");
    const auto readers = platform::openReaders(machine.root());
    DiskDeviceList list(machine.root());
    ASSERT_EQ(list.sample(*readers).size(), 1u);
    write(path, "size", "200");
    machine.write("proc/diskstats", "8 0 vda 1 0 30 0 0 0 20 0 0 0 0\n");
    EXPECT_EQ(list.sample(*readers)[0].size, 51'200u);
    EXPECT_EQ(list.sample(*readers)[0].readBytes, 15'360u) << "counters are always new";
    add("vdb", "pci0000:00/0000:00:03.0/virtio2/block/vdb", "300");
    ASSERT_EQ(list.sample(*readers).size(), 2u);
    EXPECT_EQ(list.sample(*readers)[0].size, 102'400u);
    machine.remove("proc/diskstats");
    EXPECT_EQ(list.sample(*platform::openReaders(machine.root())).size(), 2u) << "sysfs still lists them";
}

TEST(CapturedDrives, APublishedListingWithLoopsAndMapper) {
    const auto machine = quarn::testing::outsideCapture("ul/lsblk/simple-lvm");
    if (!machine) GTEST_SKIP() << "captured machines are not unpacked in build/captures";
    SCDiskDevice devices[8];
    ASSERT_EQ(diskDevices(SystemRoot(machine->string()), devices, 8), 3);
    EXPECT_STREQ(devices[0].name, "KINGSTON SH103S3");
    EXPECT_STREQ(devices[1].name, "WDC WD800JD-00MS");
    EXPECT_STREQ(devices[1].medium, "HDD");
    EXPECT_STREQ(devices[2].name, "KINGSTON SKC1000240G");
    EXPECT_STREQ(devices[2].architecture, "NVMe");
    EXPECT_NEAR(static_cast<double>(devices[0].size) / (1 << 30), 223.6, 0.05);
    EXPECT_NEAR(static_cast<double>(devices[1].size) / (1 << 30), 74.5, 0.05);
}

} // namespace
