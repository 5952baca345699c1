// The drives of this and of captured machines: which they are, what they count, what the hardware says.
#include "core/DiskSampler.h"
#include "core/Storage.h"
#include "core/Support.h"
#include "core/linux/BlockDevices.h"
#include "core/linux/DiskStats.h"
#include "core/linux/DriveBus.h"
#include "core/linux/UdevRecord.h"

namespace {

using namespace quarn::testing;

TEST(DiskStats, LinesOfAllKernelsAndNone) {
    const auto read = [](const char* counters) {
        const auto [bytesRead, bytesWritten, opsRead, opsWritten, readNs, writeNs, ok] =
            readDriveStats(counters);
        return joined(ok, bytesRead, bytesWritten, opsRead, opsWritten, readNs, writeNs);
    };
    for (const char* counters :
         {"1 0 8 2 3 0 16 4 0 5 6", "1 0 8 2 3 0 16 4 0 5 6 7 0 8 9", "1 0 8 2 3 0 16 4 0 5 6 7 0 8 9 10 11"})
        EXPECT_EQ(read(counters), "1|4096|8192|1|3|2000000|4000000") << counters;
    for (const char* counters :
         {"1 0 8 2 3 0 16 4 0 5", "1 0 8 2 3 0 sixteen 4 0 5 6", "1 0 8 2 3 0 -16 4 0 5 6", ""})
        EXPECT_EQ(read(counters), "0|0|0|0|0|0|0") << counters;
    std::string_view text = "rubbish\n\n 8 x sda 1\n  8 0\n   8   16 sdb 5 6\n259 0 nvme0n1";
    EXPECT_EQ(takeDiskLine(text)->name, "sdb");
    EXPECT_EQ(takeDiskLine(text)->name, "nvme0n1");
    EXPECT_FALSE(takeDiskLine(text));
}

TEST(Drives, TheNameDecidesWhereNothingElseCan) {
    const SystemRoot nothing("/nonexistent");
    for (const auto* name : {"sda", "sdaa", "vda", "xvdb", "hda", "nvme0n1", "nvme10n2", "mmcblk0", "dasda",
                             "pmem0", "cciss/c0d0"})
        EXPECT_TRUE(isPhysicalDrive(nothing, name)) << name;
    for (const auto* name :
         {"sda1",        "sdaa12",       "vda2",      "nvme0n1p2",    "mmcblk0p1", "mmcblk0boot0",
          "mmcblk0rpmb", "mmcblk0gp1p1", "nvme0c1n1", "cciss/c0d0p1", "loop0",     "ram3",
          "zram0",       "dm-0",         "md127",     "md_d0",        "nbd3",      "sr0",
          "fd0",         "zd16",         "drbd0",     "mtdblock0",    "rbd0",      "bcache0"})
        EXPECT_FALSE(isPhysicalDrive(nothing, name)) << name;
}

TEST(Drives, SysfsDecidesWhereItIsThere) {
    TempRoot machine;
    machine
        .link("sys/block/sda", "../devices/pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block/sda")
        .link("sys/block/nvme0n1", "../devices/virtual/nvme-subsystem/nvme-subsys0/nvme0n1")
        .link("sys/block/newkind0", "../devices/virtual/block/newkind0")
        .write("sys/block/cciss!c0d0/size", "8")
        .write("sys/class/block/odd7/partition", "7");
    EXPECT_EQ(joinedEach(physicalDrives(machine.root()), std::identity{}), "sda nvme0n1 cciss/c0d0 ");
    EXPECT_FALSE(isPhysicalDrive(machine.root(), "odd7"));
    EXPECT_EQ(driveSize(machine.root(), "cciss/c0d0"), 4096u);
}

TEST(CapturedDrives, CountersOfAMixedTableAsPublished) {
    const auto readers = openReaders(capturedRoot("hosts/mixed-disks"));
    std::vector<DriveCounters> drives;
    ASSERT_TRUE(readDriveCounters(*readers, drives));
    // Bytes read and written, reads and writes, seconds of both.
    const char* const published[] = {
        "sda|513713216512|258916880384|25354637|28444756|18492.372|63877.96",
        "mmcblk0|798720|0|192|0|0.156|0",
        "vda|16727491584|109382369280|1775784|6038856|8655.768|2069221.364",
        "nvme0n1|2377714176|20199236096|47114|1078320|21.65|1011.053",
        "sdb|4944782848|1010127360|326552|41822|0.084|5.007",
        "sdc|848782848|88527360|126552|11822|0.014|1.007",
    };
    ASSERT_EQ(drives.size(), std::size(published));
    for (size_t i = 0; i < drives.size(); ++i) {
        const auto& s = drives[i].stats;
        EXPECT_EQ(joined(drives[i].name, s.bytesRead, s.bytesWritten, s.opsRead, s.opsWritten,
                         static_cast<double>(s.timeReadNs) / 1e9, static_cast<double>(s.timeWriteNs) / 1e9),
                  published[i]);
    }
}

TEST(Drives, TheSetOfDrivesIsFollowed) {
    TempRoot machine;
    const auto readers = openReaders(machine.root());
    std::vector<DriveCounters> drives;
    for (const std::string names : {"ab", "ab", "a", "abc", "cab", "", "b"}) {
        std::string table;
        for (char c : names) table += std::string("8 0 sd") + c + " 1 0 2 0 0 0 0 0 0 0 0\n7 0 loop0 0\n";
        machine.write("proc/diskstats", table);
        ASSERT_TRUE(readDriveCounters(*readers, drives));
        std::string seen;
        for (const auto& drive : drives) seen += drive.name.back();
        EXPECT_EQ(seen, names);
    }
}

TEST(DriveBus, PlacesInTheDeviceTree) {
    const char* const cases[][2] = {
        {"0000:01:00.0/nvme/nvme0/nvme0n1", "NVMe|NVMe|1"},
        {"ata1/host0/target0:0:0/0:0:0:0/block/sda", "SATA|SATA (AHCI)|1"},
        {"usb1/1-2/1-2:1.0/host6/target6:0:0/6:0:0:0/block/sdb", "USB|USB Mass Storage|0"},
        {"usb2/2-1/2-1:1.0/rtsx_usb_sdmmc.0/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0",
         "Secure Digital|SD card reader|0"},
        {"virtio1/block/vda", "Virtio|Virtio|1"},
        {"virtio2/host2/target2:0:0/2:0:0:0/block/sda", "Virtio|Virtio|1"},
        {"host0/port-0:0/end_device-0:0/target0:0:0/0:0:0:0/block/sda", "SAS|SAS|1"},
        {"host3/session1/target3:0:0/3:0:0:1/block/sdd", "iSCSI|iSCSI|0"},
        {"host0/target0:2:0/0:2:0:0/block/sda", "SCSI|SCSI|1"},
        {"somewhere/else", "||1"},
    };
    const std::string pci = "sys/devices/pci0000:00/0000:00:14.0/";
    for (const auto& [path, shown] : cases) {
        const auto bus = driveBus(pci + path);
        const bool isInternal = bus.place == DriveBus::Place::internal;
        EXPECT_EQ(joined(bus.interconnect, bus.architecture, isInternal), shown) << path;
    }
    EXPECT_EQ(pciFunction(pci + "0000:01:00.0/nvme/nvme0"), pci + "0000:01:00.0");
    EXPECT_EQ(pciFunction("sys/devices/platform/soc/mmc_host/mmc0/mmc0:0001"), "");

    const char* const links[][3] = {
        {"2.5 GT/s PCIe", "1", "PCIe 1.0 x1"},
        {"5.0 GT/s PCIe", "2", "PCIe 2.0 x2"},
        {"8 GT/s", "4", "PCIe 3.0 x4"},
        {"16.0 GT/s PCIe", "4", "PCIe 4.0 x4"},
        {"32.0 GT/s PCIe", "4", "PCIe 5.0 x4"},
        {"64.0 GT/s PCIe", "4", "PCIe x4"},
        {"Unknown", "8", "PCIe x8"},
        {"16.0 GT/s PCIe", "0", ""},
        {"16.0 GT/s PCIe", "63", ""},
        {"", "", ""},
    };
    for (const auto& [speed, width, link] : links) EXPECT_EQ(pcieLink(speed, width), link);
}

TEST(UdevRecord, PropertiesAndEscapes) {
    const std::string_view record =
        "S:disk/by-id/x\nE:ID_MODEL=A_B\nE:ID_MODEL_ENC=A\\x20B\\x20\\x20\nG:systemd\n";
    EXPECT_EQ(udevProperty(record, "ID_MODEL"), "A_B");
    EXPECT_FALSE(udevProperty(record, "ID_"));
    EXPECT_EQ(decodeUdev(*udevProperty(record, "ID_MODEL_ENC")), "A B");
    EXPECT_EQ(decodeUdev("a\\x2"), "a\\x2");
    EXPECT_EQ(decodeUdev("\\xzz\\"), "\\xzz\\");
}

/// A machine with the drives that a test adds.
class DescribedDrives : public ::testing::Test {
protected:
    void add(const std::string& name, const std::string& path, const std::string& files) {
        machine.link("sys/block/" + name, "../devices/" + path).files("sys/devices/" + path, files);
        table += "8 0 " + name + " 1 0 10 0 0 0 20 0 0 0 0\n";
        machine.write("proc/diskstats", table);
    }
    /// What is shown of the only drive: name, medium, bus, link and place.
    std::string shown() {
        SCDiskDevice devices[4]{};
        EXPECT_EQ(diskDevices(machine.root(), devices, 4), 1);
        const auto& disk = devices[0];
        return joined(disk.name, disk.medium, disk.architecture, disk.link,
                      disk.internalDisk ? "internal" : "outside", disk.removable ? "removable" : "fixed");
    }
    std::string shownAfter(const std::string& path, std::string_view files) {
        machine.files("sys/devices/" + path, files);
        return shown();
    }

    TempRoot machine;
    std::string table;
    const std::string controller = "pci0000:00/0000:00:1d.0/0000:01:00.0";
};

TEST_F(DescribedDrives, NvmeWithItsLink) {
    const std::string path = controller + "/nvme/nvme0/nvme0n1";
    add("nvme0n1", path, "size=1000;queue/rotational=0");
    machine.link("sys/devices/" + path + "/device", "../../nvme0");
    EXPECT_EQ(shownAfter(controller, "nvme/nvme0/model=Fast SSD 1TB            ;power/runtime_status=active;"
                                     "current_link_speed=8.0 GT/s PCIe;current_link_width=4"),
              "Fast SSD 1TB|SSD|NVMe|PCIe 3.0 x4|internal|fixed");
    EXPECT_EQ(shownAfter(controller, "power/runtime_status=suspended"),
              "Fast SSD 1TB|SSD|NVMe||internal|fixed")
        << "asking for the link would wake the controller";
    EXPECT_EQ(shownAfter(controller, "removable=removable"), "Fast SSD 1TB|SSD|NVMe||outside|fixed")
        << "behind a port for plugging in";
}

TEST_F(DescribedDrives, NvmeWithSeveralControllers) {
    const std::string subsystem = "virtual/nvme-subsystem/nvme-subsys0";
    table = "259 1 nvme0c0n1 5 0 50 0 0 0 0 0 0 0 0\n"; // a hidden path, no drive of its own
    add("nvme0n1", subsystem + "/nvme0n1", "size=1000");
    machine.link("sys/block/nvme0c0n1", "../devices/" + controller + "/nvme/nvme0/nvme0c0n1")
        .link("sys/devices/" + subsystem + "/nvme0n1/device", "..")
        .link("sys/devices/" + subsystem + "/nvme0", "../../../" + controller + "/nvme/nvme0")
        .files("sys/devices/" + subsystem, "model=Shared");
    EXPECT_EQ(shownAfter(controller, "current_link_speed=16.0 GT/s PCIe;current_link_width=2"),
              "Shared||NVMe|PCIe 4.0 x2|internal|fixed");
}

TEST_F(DescribedDrives, NamesAndMedia) {
    const std::string ata = "pci0000:00/0000:00:17.0/ata3/host2/target2:0:0/2:0:0:0";
    add("sda", ata + "/block/sda", "size=100;queue/rotational=1;dev=8:0");
    machine.link("sys/devices/" + ata + "/block/sda/device", "../..");
    EXPECT_EQ(shownAfter(ata, "vendor=ATA     ;model=Long Model Name "),
              "Long Model Name|HDD|SATA (AHCI)||internal|fixed");
    machine.write("run/udev/data/b8:0", "E:ID_MODEL_ENC=Long\\x20Model\\x20Name\\x204000\n");
    EXPECT_EQ(shown(), "Long Model Name 4000|HDD|SATA (AHCI)||internal|fixed");
    EXPECT_EQ(shownAfter(ata, "vendor=Maker"), "Maker Long Model Name|HDD|SATA (AHCI)||internal|fixed");
    EXPECT_EQ(shownAfter(ata, "vendor=Model"), "Long Model Name|HDD|SATA (AHCI)||internal|fixed")
        << "the maker is in the name";
    EXPECT_EQ(shownAfter(ata, "vendor=QEMU"), "QEMU Long Model Name||SATA (AHCI)||internal|fixed")
        << "a virtual machine's disk does not rotate";
}

TEST_F(DescribedDrives, SticksAndCards) {
    const std::string usb = "pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/host6/target6:0:0/6:0:0:0/block/sdb";
    add("sdb", usb, "size=100;removable=1;queue/rotational=1");
    EXPECT_EQ(shown(), "||USB Mass Storage||outside|removable") << "sticks claim to rotate";
    machine.files("sys/devices/" + usb, "size=0"); // a reader without a card is no disk
    EXPECT_EQ(readDriveCapacity(machine.root()).disks, 0u);

    const std::string eMmc = "platform/soc/mmc_host/mmc0/mmc0:0001";
    add("mmcblk0", eMmc + "/block/mmcblk0", "size=100");
    machine.link("sys/devices/" + eMmc + "/block/mmcblk0/device", "../..");
    EXPECT_EQ(shownAfter(eMmc, "type=MMC;name=DG4064"), "DG4064||eMMC||internal|fixed");
}

TEST_F(DescribedDrives, AListingAsksTheHardwareOnlyWhenTheDrivesChange) {
    const std::string path = "pci0000:00/0000:00:02.0/virtio1/block/vda";
    add("vda", path, "size=100");
    const auto readers = openReaders(machine.root());
    DiskDeviceList list(machine.root());
    ASSERT_EQ(list.sample(*readers).size(), 1u);
    machine.files("sys/devices/" + path, "size=200")
        .write("proc/diskstats", "8 0 vda 1 0 30 0 0 0 20 0 0 0 0\n");
    EXPECT_EQ(list.sample(*readers)[0].size, 51'200u);
    EXPECT_EQ(list.sample(*readers)[0].readBytes, 15'360u) << "counters are always new";
    EXPECT_EQ(list.sample(*readers)[0].writeBytes, 10'240u);
    add("vdb", "pci0000:00/0000:00:03.0/virtio2/block/vdb", "size=300");
    ASSERT_EQ(list.sample(*readers).size(), 2u);
    EXPECT_EQ(list.sample(*readers)[0].size, 102'400u);
    machine.remove("proc/diskstats");
    EXPECT_EQ(list.sample(*openReaders(machine.root())).size(), 2u) << "sysfs still lists them";
}

constexpr uint64_t second = 1'000'000'000;
constexpr uint64_t ms = 1'000'000;

DriveCounters drive(uint64_t bytesRead, uint64_t bytesWritten, uint64_t opsRead, uint64_t timeReadNs) {
    return {"sda", {bytesRead, bytesWritten, opsRead, 0, timeReadNs, 0, true}};
}

std::string shown(const SCDisk& disk) {
    return joined(disk.readBytes, disk.readRate, disk.writeRate, disk.readOpsRate, disk.activeFraction,
                  disk.avgResponseMs);
}

TEST(DiskSampler, RatesBusyShareAndResponse) {
    DiskSampler sampler((SystemRoot("/nonexistent")));
    EXPECT_EQ(shown(sampler.advance({drive(1000, 500, 10, 0), drive(0, 0, 0, 0)}, second)), "1000|0|0|0|0|0");
    EXPECT_EQ(shown(sampler.advance({drive(5000, 500, 20, 100 * ms), drive(0, 0, 10, 300 * ms)}, 3 * second)),
              "5000|2000|0|10|0.1|20")
        << "400 ms of service in two seconds of two drives, by 20 operations";
    EXPECT_EQ(shown(sampler.advance({drive(5000, 500, 20, 90 * second), drive(0, 0, 10, 0)}, 4 * second)),
              "5000|0|0|0|1|0")
        << "requests served at once add up to more time than passed; none of them ended";
}

TEST(DiskSampler, ADriveThatWasUnpluggedOrDoesNotAnswer) {
    DiskSampler sampler((SystemRoot("/nonexistent")));
    sampler.advance({drive(9000, 0, 90, 9 * ms), drive(5, 0, 1, ms)}, second);
    EXPECT_EQ(shown(sampler.advance({drive(5, 0, 1, ms)}, 2 * second)), "5|0|0|0|0|0")
        << "a fall is no traffic";
    DriveCounters silent = drive(77, 0, 7, 7);
    silent.stats.ok = false;
    EXPECT_EQ(shown(sampler.advance({drive(5, 0, 1, 501 * ms), silent}, 3 * second)), "5|0|0|0|0.25|0")
        << "the silent drive still is a drive";
}

TEST(DiskSampler, AFailedReadingIsZeroAndTheNextNoBurst) {
    TempRoot machine;
    machine.write("proc/diskstats", "8 0 sda 1 0 1000 0 0 0 0 0 0 0 0\n").write("sys/block/sda/size", "2048");
    const auto readers = openReaders(machine.root());
    DiskSampler sampler(machine.root());
    EXPECT_EQ(sampler.sample(*readers).readBytes, 512'000u);
    EXPECT_EQ(sampler.sample(*openReaders(SystemRoot("/nonexistent"))).readBytes, 0u);
    const SCDisk next = sampler.sample(*readers);
    EXPECT_EQ(joined(next.readBytes, next.readRate, next.capacityBytes, next.diskCount),
              "512000|0|1048576|1");
}

} // namespace
