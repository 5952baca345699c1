#include "ui/modules/Attention.h"

#include "support/Joined.h"

namespace quarn {
namespace {

constexpr uint64_t gib = uint64_t{1} << 30;

Snapshot healthy() {
    Snapshot snapshot;
    snapshot.generation = 2;
    snapshot.mem.total = 16 * gib;
    snapshot.mem.swapTotal = 8 * gib;
    snapshot.mem.swapUsed = gib;
    snapshot.mem.pageSize = 4096;
    snapshot.mem.pressureLevel = 1;
    snapshot.mem.freePercent = 60;
    snapshot.battery.emplace();
    snapshot.battery->present = snapshot.battery->onAC = true;
    snapshot.battery->percent = 3;
    snapshot.temps = {{"TC01", 70}};
    return snapshot;
}

Volume volume(const char* mount, const char* device, uint64_t total, uint64_t free, const char* fs = "ext4") {
    return {.mount = mount, .device = device, .fs = fs, .total = total, .free = free, .used = total - free};
}

std::vector<std::string> look(const Snapshot& snapshot, std::span<const Volume> volumes = {}) {
    std::vector<std::string> texts;
    for (const auto& item : Attention().look(snapshot, {}, volumes, {}, {}, 0)) {
        const char* const marks[] = {"", "! ", "!! "};
        texts.push_back(marks[static_cast<int>(item.level)] + item.text + ": " + item.detail);
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(Attention, saysWhatIsWrongAndNothingElse) {
    struct Case {
        void (*change)(Snapshot&);
        Texts expected;
    };
    const Case cases[] = {
        {[](Snapshot&) {}, {}},
        {[](Snapshot& s) { s = Snapshot(); }, {}},
        {[](Snapshot& s) { s.mem.pressureLevel = 4, s.mem.freePercent = 2; },
         {"!! Memory is very short: 2 % can be given to programs without swapping"}},
        {[](Snapshot& s) { s.rates.swapIn = 3000; },
         {"! Memory is being swapped: 12.3 MB/s; programs wait for the disk"}},
        {[](Snapshot& s) { s.mem.swapUsed = 15 * gib / 2; }, {"Swap is nearly full: 7.50 GiB of 8.00 GiB"}},
        {[](Snapshot& s) { s.mem.swapTotal = 0; }, {}},
        {[](Snapshot& s) {
             s.temps = {{"TC01", 99}, {"TG01", 40}};
         },
         {"! CPU is hot: 99 °C"}},
        {[](Snapshot& s) { s.battery->onAC = false; }, {"!! The battery is low: 3 %"}},
        {[](Snapshot& s) { s.battery->onAC = false, s.battery->percent = -1; }, {}},
    };
    for (const auto& one : cases) {
        Snapshot snapshot = healthy();
        one.change(snapshot);
        EXPECT_EQ(look(snapshot), one.expected);
    }
}

TEST(Attention, tellsFullVolumesOnceAndTheGravestFirst) {
    const Volume volumes[] = {
        volume("/", "/dev/a", 100'000'000'000, 50'000'000'000),
        volume("/home", "/dev/b", 500'000'000'000, 40'000'000'000),
        volume("/srv/home", "/dev/b", 500'000'000'000, 40'000'000'000), // the same once more
        volume("/data", "/dev/c", 1'000'000'000'000, 1'000'000'000),
        volume("/media/disc", "/dev/sr0", 700'000'000, 0, "iso9660"),
        volume("/remote", "server:/x", 0, 0), // does not answer
    };
    EXPECT_EQ(look(healthy(), volumes), (Texts{"!! /data is full: 1.00 GB of 1.00 TB free",
                                               "! /home is nearly full: 40.0 GB of 500 GB free"}));
}

TEST(Attention, waitsBeforeItSpeaksOfZombies) {
    Attention attention;
    const auto processes = [](std::optional<uint64_t> start) {
        Snapshot snapshot;
        ProcInfo parent, child;
        parent.pid = 7, parent.name = "builder";
        child.pid = 20, child.ppid = 7, child.name = "step", child.state = "Zombie",
        child.startTimeMicros = start;
        snapshot.processes = {parent, child};
        return snapshot;
    };
    const auto at = [&](double now, std::optional<uint64_t> start) {
        return testing::joinedEach(attention.look(processes(start), {}, {}, {}, {}, now),
                                   &AttentionItem::text, &AttentionItem::detail);
    };
    EXPECT_EQ(at(0, 1), "");
    EXPECT_EQ(at(9, 1), "");
    EXPECT_EQ(at(10, 1), "step has ended but is still listed (zombie)|builder has not asked how it ended ");
    EXPECT_EQ(at(11, 2), "") << "another process with the same number";
}

TEST(Attention, saysOnlyWhatThisMachineCanShow) {
    Snapshot bare;
    EXPECT_EQ(watchedText(bare, {}, {}),
              "A note appears here when memory is short, when a volume has less than 10 % free or when ended "
              "processes stay listed. The limits are in the settings.");
    bare.mem.swapTotal = 1;
    bare.battery.emplace().present = true;
    EXPECT_NE(watchedText(bare, {}, {})
                  .find("more than 8 GB of swap is in use, when the battery holds less than 15 %"),
              std::string::npos);
}

} // namespace
} // namespace quarn
