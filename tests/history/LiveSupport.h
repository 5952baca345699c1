#pragma once

#include "history/HistoryArchive.h"
#include "history/HistoryStore.h"
#include "history/HistoryTime.h"

namespace quarn::testing {

inline constexpr int64_t liveNow = 1'790'000'040; ///< a full minute

inline WallTime wallSeconds(double seconds) {
    return WallTime(std::chrono::round<std::chrono::microseconds>(std::chrono::duration<double>(seconds)));
}

inline SharedSample sampleAt(double seconds) {
    auto sample = std::make_shared<HistorySample>();
    sample->time = wallSeconds(seconds);
    return sample;
}

/// A sample in which every field has a value of its own.
inline SharedSample fullSample(double seconds) {
    auto sample = std::make_shared<HistorySample>();
    sample->time = wallSeconds(seconds);
    sample->generation = 17;
    sample->memUsed = 8'000'000'001;
    sample->memSwap = 4096;
    sample->processCount = 321;
    sample->threads = 1234;
    double value = 0;
    for (double* field :
         {&sample->cpuTotal, &sample->cpuSystem, &sample->cpuUser, &sample->diskRead, &sample->diskWrite,
          &sample->netRx, &sample->netTx, &sample->gpuMemUsed, &sample->encoderWatts, &sample->decoderWatts,
          &sample->diskActive, &sample->pageIn, &sample->pageOut, &sample->gpuRenderer, &sample->gpuTiler})
        *field = value += 1.1;
    for (std::optional<double>* field : {&sample->sysWatts, &sample->cpuWatts, &sample->gpuUtil,
                                         &sample->hotspotC, &sample->npuWatts, &sample->batteryWatts})
        *field = value += 1.1;
    sample->batteryPercent = 81;
    sample->top = {{1, "init", 0.5, 4096, true}, {4711, "Größe \U0001F600", 250.25, 1 << 30, false}};
    sample->sensorGroupMax = {61.5F, std::numeric_limits<float>::quiet_NaN(), 40};
    sample->perCore = {12.5, 100, 0};
    sample->perCoreSystem = {2.5, 50, 0};
    sample->diskRates = {{"sda", {1, 2}}, {"nvme0n1", {3, 4}}};
    sample->interfaceRates = {{"eth0", {5, 6}}};
    sample->disksGeneration = 5;
    sample->interfacesGeneration = 6;
    return sample;
}

/// Everything that a sample holds, to compare with.
std::string describe(const HistorySample& sample);

/// Two applications over two minutes, of which the second has no name.
AppLiveHistory twoApps();

} // namespace quarn::testing
