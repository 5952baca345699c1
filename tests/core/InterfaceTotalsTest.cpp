#include "core/InterfaceTotals.h"
#include "core/NetSampler.h"

namespace {

using namespace sysinfo;

constexpr uint64_t second = 1'000'000'000;

TEST(InterfaceTotals, IncrementsOfOneInterface) {
    constexpr uint64_t pastFourGiB = 5'000'000'000;
    using Counters = std::array<uint64_t, 4>; ///< bytes received and sent, packets received and sent
    const struct {
        const char* lesson;
        Counters before, after, added;
    } cases[] = {
        {"plain growth", {100, 200, 3, 4}, {150, 260, 5, 5}, {50, 60, 2, 1}},
        {"a 32-bit counter wrapped", {4'294'967'000, 0, 0, 0}, {500, 0, 0, 0}, {796, 0, 0, 0}},
        {"a 64-bit counter never wraps", {pastFourGiB, 0, 9, 0}, {500, 0, 9, 0}, {0, 0, 0, 0}},
        {"bytes and packets fell together: a new count",
         {4'294'967'000, 7, 10, 7},
         {500, 9, 4, 9},
         {500, 9, 4, 9}},
        {"the same when sending", {7, pastFourGiB, 7, 10}, {9, 500, 9, 4}, {9, 500, 9, 4}},
        {"only bytes fell", {8, pastFourGiB, 8, 10}, {9, 500, 9, 10}, {1, 0, 1, 0}},
    };
    for (const auto& c : cases) {
        InterfaceTotals totals;
        const auto add = [&](const Counters& counted) {
            const auto [rx, tx, rxPackets, txPackets] =
                totals.add({{2, "en0", counted[0], counted[1], counted[2], counted[3]}});
            return Counters{rx, tx, rxPackets, txPackets};
        };
        EXPECT_EQ(add(c.before), c.before) << "the totals start at the counters";
        auto end = add(c.after);
        for (size_t i = 0; i < end.size(); ++i) end[i] -= c.before[i];
        EXPECT_EQ(end, c.added) << c.lesson;
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
    for (const char* name : {"en0", "wlp3s0"}) EXPECT_TRUE(countsInterface(name, linkUp, linkTypeEthernet));
    for (const char* name : {"", "awdl0", "llw0", "bridge100", "ap1", "bond0", "vlan7"})
        EXPECT_FALSE(countsInterface(name, linkUp, linkTypeEthernet)) << name;
    EXPECT_TRUE(countsInterface("en0", 0, linkTypeEthernet)) << "switched off";
    EXPECT_FALSE(countsInterface("lo0", linkLoopback, linkTypeEthernet));
    EXPECT_FALSE(countsInterface("en0", linkPointToPoint, linkTypeEthernet));
    EXPECT_FALSE(countsInterface("utun3", linkUp, linkTypeOther));
    EXPECT_TRUE(countsInterface("bridge100", linkPointToPoint, linkTypeCellular));
    EXPECT_FALSE(countsInterface("wwan0", linkLoopback, linkTypeCellular));
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
