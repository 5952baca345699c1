#include "core/InterfaceTotals.h"
#include "core/NetSampler.h"

namespace {

using namespace sysinfo;

constexpr uint64_t second = 1'000'000'000;

std::vector<InterfaceCounters> port(uint64_t rxBytes, uint64_t txBytes, uint64_t rxPackets = 0,
                                    uint64_t txPackets = 0) {
    return {{2, "en0", rxBytes, txBytes, rxPackets, txPackets}};
}

TEST(InterfaceTotals, IncrementsOfOneInterface) {
    constexpr uint64_t pastFourGiB = 5'000'000'000;
    struct Case {
        std::vector<InterfaceCounters> before, after;
        uint64_t rxBytes, txBytes, rxPackets, txPackets; ///< what is added
        const char* lesson;
    };
    for (const auto& c : {
             Case{port(100, 200, 3, 4), port(150, 260, 5, 5), 50, 60, 2, 1, "plain growth"},
             Case{port(4'294'967'000, 0), port(500, 0), 796, 0, 0, 0, "a 32-bit counter wrapped"},
             Case{port(pastFourGiB, 0, 9), port(500, 0, 9), 0, 0, 0, 0, "a 64-bit counter never wraps"},
             Case{port(4'294'967'000, 7, 10, 7), port(500, 9, 4, 9), 500, 9, 4, 9,
                  "bytes and packets fell together: the driver counts anew"},
             Case{port(7, pastFourGiB, 7, 10), port(9, 500, 9, 4), 9, 500, 9, 4, "the same when sending"},
             Case{port(8, pastFourGiB, 8, 10), port(9, 500, 9, 10), 1, 0, 1, 0, "only bytes fell"},
         }) {
        InterfaceTotals totals;
        const auto start = totals.add(c.before);
        EXPECT_EQ(start.rxBytes, c.before[0].rxBytes) << "the totals start at the counters";
        const auto end = totals.add(c.after);
        EXPECT_EQ(end.rxBytes - start.rxBytes, c.rxBytes) << c.lesson;
        EXPECT_EQ(end.txBytes - start.txBytes, c.txBytes) << c.lesson;
        EXPECT_EQ(end.rxPackets - start.rxPackets, c.rxPackets) << c.lesson;
        EXPECT_EQ(end.txPackets - start.txPackets, c.txPackets) << c.lesson;
    }
}

TEST(InterfaceTotals, InterfacesThatComeAndGo) {
    InterfaceTotals totals;
    totals.add({{1, "a", 1000}, {2, "b", 10}});
    EXPECT_EQ(totals.add({{1, "a", 1001}, {3, "late", 5'000'000}}).rxBytes, 1011u) << "a baseline only";
    EXPECT_EQ(totals.add({{1, "a", 1001}, {3, "late", 5'000'007}}).rxBytes, 1018u);
    EXPECT_EQ(totals.add({{3, "renamed", 6'000'000}}).rxBytes, 1018u) << "the same index is not the same";
    EXPECT_EQ(totals.add({}).rxBytes, 1018u);
    EXPECT_EQ(totals.add({{1, "a", 2000}}).rxBytes, 1018u) << "back again is new again";

    InterfaceTotals lateStart;
    lateStart.add({});
    EXPECT_EQ(lateStart.add({{1, "a", 2000}}).rxBytes, 0u);
}

TEST(InterfaceTotals, WhichInterfacesCount) {
    using namespace platform;
    struct Case {
        const char* name;
        uint32_t flags;
        uint8_t type;
        bool counts;
    };
    for (const auto& c : {
             Case{"en0", linkUp, linkTypeEthernet, true},
             Case{"wlp3s0", 0, linkTypeEthernet, true},
             Case{"", linkUp, linkTypeEthernet, false},
             Case{"lo0", linkLoopback, linkTypeEthernet, false},
             Case{"en0", linkPointToPoint, linkTypeEthernet, false},
             Case{"utun3", linkUp, linkTypeOther, false},
             Case{"awdl0", linkUp, linkTypeEthernet, false},
             Case{"llw0", linkUp, linkTypeEthernet, false},
             Case{"bridge100", linkUp, linkTypeEthernet, false},
             Case{"ap1", linkUp, linkTypeEthernet, false},
             Case{"bond0", linkUp, linkTypeEthernet, false},
             Case{"vlan7", linkUp, linkTypeEthernet, false},
             Case{"bridge100", linkPointToPoint, linkTypeCellular, true},
             Case{"wwan0", linkLoopback, linkTypeCellular, false},
         })
        EXPECT_EQ(countsInterface(c.name, c.flags, c.type), c.counts) << c.name;
}

TEST(NetSampler, RatesOverTheTimeBetweenSamples) {
    const auto links = [](uint64_t rx, uint64_t tx) {
        platform::Link counted{2, "en0", platform::linkUp, platform::linkTypeEthernet, rx, tx, rx / 10, 0};
        platform::Link tunnel{3, "tun0", platform::linkUp, platform::linkTypeOther, 999, 999, 9, 9};
        return std::vector{counted, tunnel};
    };
    NetSampler sampler;
    const SCNet first = sampler.advance(links(1000, 50), 5 * second);
    EXPECT_EQ(first.rxBytes, 1000u);
    EXPECT_EQ(first.rxRate, 0);
    const SCNet later = sampler.advance(links(3000, 50), 5 * second + second / 2);
    EXPECT_EQ(later.rxBytes, 3000u);
    EXPECT_DOUBLE_EQ(later.rxRate, 4000);
    EXPECT_DOUBLE_EQ(later.rxPacketRate, 400);
    EXPECT_EQ(later.txRate, 0);
    EXPECT_EQ(sampler.advance(links(9000, 50), 5 * second).rxRate, 0) << "time did not go on";
}

TEST(NetSampler, AFailedListingRepeatsTheLastSample) {
    NetSampler sampler;
    sampler.advance({{2, "en0", 0, platform::linkTypeEthernet, 0, 0, 0, 0}}, second);
    const SCNet last = sampler.advance({{2, "en0", 0, platform::linkTypeEthernet, 700, 0, 7, 0}}, 2 * second);
    const auto nowhere = platform::openReaders(SystemRoot("/nonexistent"));
    EXPECT_EQ(sampler.sample(*nowhere).rxRate, last.rxRate);
    EXPECT_EQ(sampler.sample(*nowhere).rxBytes, 700u);
}

} // namespace
