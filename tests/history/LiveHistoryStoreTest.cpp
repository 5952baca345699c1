#include "history/HistoryTopProcesses.h"
#include "history/LiveSupport.h"
#include "monitor/Processes.h"
#include "support/Joined.h"

#include <cmath>

namespace quarn::testing {
namespace {

/// What a store holds after samples every `step` seconds for `seconds`, as spacings.
std::vector<double> spacingsAfter(HistoryStore& store, double step, double seconds) {
    for (int i = 0; i * step <= seconds; ++i)
        store.append(sampleAt(liveNow + i * step), wallSeconds(liveNow + i * step));
    std::vector<double> spacings;
    for (size_t i = 1; i < store.samples().size(); ++i)
        spacings.push_back(secondsBetween(store.samples()[i - 1]->time, store.samples()[i]->time));
    return spacings;
}

TEST(HistoryStore, ThinsWhatIsOlderThanTenMinutes) {
    struct Case {
        double step;
        size_t least, most; ///< samples at the end
        double oldSpacing;
        double seconds = 2000;
    };
    for (const Case& c :
         {Case{1, 1801, 1801, 1}, Case{0.95, 1890, 1900, 0.95}, Case{0.5, 2400, 2470, 1},
          Case{0.2, 4200, 4350, 1}, Case{0.05, 7500, 7500, 0.05, 400}, Case{5, 361, 361, 5}}) {
        HistoryStore store;
        const auto spacings = spacingsAfter(store, c.step, c.seconds);
        EXPECT_GE(store.samples().size(), c.least) << c.step;
        EXPECT_LE(store.samples().size(), c.most) << c.step;
        EXPECT_NEAR(spacings.front(), c.oldSpacing, 1e-6) << c.step;
        EXPECT_NEAR(spacings.back(), c.step, 1e-6);
        const auto dense =
            std::count_if(store.samples().begin(), store.samples().end(), [&](const auto& each) {
                return secondsBetween(each->time, store.samples().back()->time) <= 600;
            });
        if (c.seconds > 600) {
            EXPECT_NEAR(static_cast<double>(dense), 600 / c.step, 2) << c.step;
        }
    }
}

TEST(HistoryStore, ThinsInBatches) {
    HistoryStore store;
    spacingsAfter(store, 0.5, 600 + 63 * 0.5);
    EXPECT_EQ(store.samples().size(), 1264u); // 63 old ones wait
    HistoryStore next;
    spacingsAfter(next, 0.5, 600 + 64 * 0.5);
    EXPECT_EQ(next.samples().size(), 1265u - 32);
}

TEST(HistoryStore, ThinningComparesWithTheLastOneKept) {
    std::vector<SharedSample> samples;
    for (const double at : {0.0, 0.89, 0.9, 1.7, 1.8, 5.0}) samples.push_back(sampleAt(liveNow + at));
    const auto times = [](const std::vector<SharedSample>& kept) {
        std::vector<double> result;
        for (const auto& each : kept)
            result.push_back(std::round((epochSeconds(each->time) - liveNow) * 100) / 100);
        return result;
    };
    EXPECT_EQ(times(HistoryStore::thinned(samples, nullptr, 1)), (std::vector<double>{0, 0.9, 1.8, 5}));
    EXPECT_EQ(times(HistoryStore::thinned(samples, sampleAt(liveNow - 0.5).get(), 1)),
              (std::vector<double>{0.89, 1.8, 5}));
    EXPECT_TRUE(HistoryStore::thinned({}, nullptr, 1).empty());
}

TEST(HistoryStore, RestoresTheLastHalfHourAndMarksTheStop) {
    HistoryStore store;
    store.append(sampleAt(liveNow - 2), wallSeconds(liveNow)); // of this run
    std::vector<SharedSample> saved;
    for (const double at : {-3000.0, -1801.0, -1799.0, -60.0, -1.0, 500.0})
        saved.push_back(sampleAt(liveNow + at));
    const auto breaks = store.restore(
        saved, {{liveNow - 2500, liveNow - 2000}, {liveNow - 1900, liveNow - 1700}}, wallSeconds(liveNow));
    ASSERT_EQ(store.samples().size(), 3u); // neither what is too old nor what has not been yet
    EXPECT_EQ(store.samples()[0], saved[2]);
    EXPECT_EQ(store.samples()[1], saved[3]);
    EXPECT_EQ(breaks,
              (std::vector<HistoryBreak>{{liveNow - 1900, liveNow - 1700}, {liveNow - 60, liveNow - 2}}));

    HistoryStore old;
    EXPECT_TRUE(old.restore({saved[0]}, {}, wallSeconds(liveNow)).empty());
}

// ---- The busiest processes

TEST(HistoryTopProcesses, RanksBySmoothedUse) {
    HistoryTopProcesses tracker;
    Snapshot snapshot;
    snapshot.timestamp = wallSeconds(liveNow);
    const auto process = [](int64_t pid, double cpu) { return processOf(pid, "", cpu); };
    ProcInfo another = process(1, 5); // under an old pid
    another.startTimeMicros = 2'000'000;
    const auto pidsAfter = [&](std::vector<ProcInfo> processes) {
        ++snapshot.processGeneration;
        snapshot.timestamp += std::chrono::seconds(1);
        snapshot.processes = std::move(processes);
        std::vector<int64_t> pids;
        for (const auto& each : tracker.update(snapshot)) pids.push_back(each.pid);
        return pids;
    };
    using Pids = std::vector<int64_t>;
    EXPECT_EQ(pidsAfter({process(1, 0), process(2, 0)}), Pids{}); // idle ones are no busy ones
    EXPECT_EQ(pidsAfter({process(1, 20), process(2, 20), process(3, 30), process(4, 1), process(5, 1),
                         process(6, 2)}),
              (Pids{3, 1, 2, 6, 4}));
    for (int i = 0; i < 20; ++i) pidsAfter({process(1, 50), process(2, 0.01)});
    EXPECT_EQ(pidsAfter({process(1, 0), process(2, 90)}), (Pids{1, 2})); // a blip is not yet the busiest
    EXPECT_EQ(tracker.update(snapshot)[0].cpu, 0);                       // but told as it is now
    EXPECT_EQ(pidsAfter({another, process(2, 4)}), (Pids{2, 1}));
    for (int i = 0; i < 200; ++i) pidsAfter({process(1, 0), process(2, 0)});
    EXPECT_EQ(pidsAfter({process(1, 0), process(2, 0)}), Pids{});
}

// ---- Samples of snapshots

TEST(HistorySample, WhatIsNotKnownStaysAbsent) {
    Snapshot snapshot;
    snapshot.generation = 1; // the first of a run has no rates
    snapshot.cpu.perCore = {0};
    snapshot.disk.diskCount = 1;
    snapshot.gpu = {-1, -1, -1, 0, 0};
    Battery battery;
    battery.present = true;
    battery.percent = -1;
    snapshot.battery = battery;
    HistorySample sample(snapshot, {}, {}, nullptr);
    for (const double value : {sample.cpuTotal, sample.cpuUser, sample.diskRead, sample.netRx, sample.pageIn,
                               sample.gpuRenderer, sample.gpuMemUsed, sample.encoderWatts})
        EXPECT_TRUE(std::isnan(value));
    for (const auto& value : {sample.sysWatts, sample.cpuWatts, sample.gpuUtil, sample.hotspotC,
                              sample.npuWatts, sample.batteryWatts})
        EXPECT_FALSE(value);
    EXPECT_FALSE(sample.batteryPercent);
    EXPECT_TRUE(sample.sensorGroupMax.empty() && sample.perCore.empty());

    snapshot.generation = 2;
    snapshot.temps = {{"TC00", 50}, {"TH00", 70}};
    battery.percent = 0;
    battery.voltage_mV = 12'000;
    battery.amperage_mA = -500;
    snapshot.battery = battery;
    const SensorGroups::Maximum maxima[]{{"TC", 50}, {"TH", 70}};
    sample = HistorySample(snapshot, {}, maxima, nullptr);
    EXPECT_EQ(
        joined(sample.cpuTotal, sample.diskRead, sample.hotspotC, sample.batteryPercent, sample.batteryWatts),
        "0|0|70|0|-6")
        << "known to be idle";
    ASSERT_EQ(sample.sensorGroupMax.size(), SensorGroups::slotNames(SensorNaming::intel).size());
    EXPECT_EQ(sample.sensorGroupMax[0], 50);
    EXPECT_TRUE(std::isnan(sample.sensorGroupMax[1]));
}

TEST(HistorySample, TakesRatesOfDevicesAnewWithTheirList) {
    Snapshot snapshot;
    std::vector<DiskDevice> disks(1);
    disks[0].bsd = "sda";
    disks[0].readRate = 7;
    snapshot.disks = disks;
    snapshot.disksGeneration = 1;
    const HistorySample first(snapshot, {}, {}, nullptr);
    disks[0].readRate = 9;
    snapshot.disks = disks;
    EXPECT_EQ(HistorySample(snapshot, {}, {}, &first).diskRates[0].second.down, 7);
    snapshot.disksGeneration = 2;
    const HistorySample second(snapshot, {}, {}, &first);
    EXPECT_EQ(second.diskRates[0].second.down, 9);
    EXPECT_EQ(second.diskRates[0].first.view().data(), first.diskRates[0].first.view().data());
}

} // namespace
} // namespace quarn::testing
