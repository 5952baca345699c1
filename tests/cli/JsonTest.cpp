#include "cli/Json.h"
#include "cli/SampleSnapshot.h"

#include <cmath>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quarn::cli {
namespace {

using Parsed = nlohmann::ordered_json;
using testing::sampleSnapshot;

template <class T>
Parsed reparsed(const T& value, const Known& known = {}) {
    JsonWriter json;
    writeJson(json, value, known);
    return Parsed::parse(json.text());
}

std::vector<std::string> keysOf(const Parsed& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) keys.push_back(key);
    return keys;
}

/// The nulls among the direct fields of `object`.
std::vector<std::string> nullsIn(const Parsed& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) {
        if (value.is_null()) keys.push_back(key);
    }
    return keys;
}

TEST(Json, SnapshotKeepsTheNamesAndOrderOfItsFields) {
    const Parsed document = reparsed(sampleSnapshot());
    const std::vector<std::string> expected{"cpu",
                                            "power",
                                            "powerStale",
                                            "powerSource",
                                            "freq",
                                            "dcInWatts",
                                            "temps",
                                            "powerKeys",
                                            "voltageKeys",
                                            "currentKeys",
                                            "fanKeys",
                                            "mem",
                                            "disk",
                                            "disks",
                                            "disksGeneration",
                                            "interfaces",
                                            "interfacesGeneration",
                                            "rates",
                                            "net",
                                            "gpu",
                                            "battery",
                                            "processes",
                                            "totalThreads",
                                            "loadAvg",
                                            "uptime",
                                            "generation",
                                            "processGeneration",
                                            "timestamp",
                                            "thermalState",
                                            "isAppleSilicon"};
    EXPECT_EQ(keysOf(document), expected);
    EXPECT_EQ(keysOf(document["cpu"]),
              (std::vector<std::string>{"total", "user", "system", "idle", "perCore", "perCoreSystem"}));
    EXPECT_EQ(document["cpu"]["perCore"].size(), 8u);
    EXPECT_EQ(document["processes"].size(), 40u);
    EXPECT_EQ(document["processes"][2]["name"], "postgres");
    EXPECT_EQ(document["processes"][2]["diskReadRate"], 2468);
    EXPECT_EQ(document["mem"]["swapUsed"], 1u << 29);
    EXPECT_EQ(document["timestamp"], 1700000000.25);
    EXPECT_EQ(document["thermalState"], "elevated");
    EXPECT_EQ(document["loadAvg"], (Parsed{0.52, 0.41, 0.3}));
}

TEST(Json, WhatAProcessHidesIsNull) {
    ProcInfo process;
    process.pid = 7;
    process.state = "—";
    EXPECT_EQ(
        nullsIn(reparsed(process)),
        (std::vector<std::string>{"user", "state", "path", "cpuPercent", "memBytes", "threads", "cpuTimeNs",
                                  "startTime", "startTimeMicros", "diskRead", "diskWrite", "diskReadRate",
                                  "diskWriteRate", "contextSwitches", "cswRate", "energyNj", "watts"}));

    const Snapshot snapshot = sampleSnapshot();
    EXPECT_EQ(nullsIn(reparsed(snapshot.processes[1])), // measured, but its disk use belongs to someone else
              (std::vector<std::string>{"diskRead", "diskWrite", "diskReadRate", "diskWriteRate", "energyNj",
                                        "watts"}));
}

TEST(Json, RatesOfAFirstSampleAreNull) {
    Snapshot snapshot = sampleSnapshot();
    snapshot.generation = snapshot.processGeneration = 1;
    const Parsed document = reparsed(snapshot, knownIn(snapshot, sysinfo::SystemRoot::host()));
    EXPECT_TRUE(document["cpu"]["total"].is_null());
    EXPECT_TRUE(document["cpu"]["perCore"].is_null());
    EXPECT_TRUE(document["net"]["rxRate"].is_null());
    EXPECT_EQ(document["net"]["rxBytes"], 1000000);
    EXPECT_TRUE(document["disk"]["readRate"].is_null());
    EXPECT_TRUE(document["processes"][0]["cpuPercent"].is_null());
    EXPECT_TRUE(document["rates"]["faults"].is_null());
    EXPECT_EQ(document["mem"]["used"], 3ull << 30);
}

TEST(Json, WhatACapturedMachineLacksIsNull) {
    Snapshot snapshot;
    snapshot.generation = snapshot.processGeneration = 2;
    snapshot.gpu = {-1, -1, -1, 0, 0};
    const Parsed document = reparsed(snapshot, knownIn(snapshot, sysinfo::SystemRoot("/nowhere")));
    for (const auto* record : {"cpu", "mem", "net", "gpu"}) {
        EXPECT_EQ(nullsIn(document[record]), keysOf(document[record])) << record;
    }
    EXPECT_TRUE(document["uptime"].is_null());
    EXPECT_TRUE(document["battery"].is_null());
    EXPECT_TRUE(document["power"]["sysWatts"].is_null());
    EXPECT_TRUE(document["disk"]["readBytes"].is_null());
}

TEST(Json, ACaptureThatStandsStillHasNoRates) {
    Snapshot snapshot = sampleSnapshot();
    const sysinfo::SystemRoot captured("/somewhere");
    EXPECT_TRUE(knownIn(snapshot, captured).rates) << "a live machine mounted elsewhere";
    snapshot.cpu.total = 0;
    const Parsed document = reparsed(snapshot, knownIn(snapshot, captured));
    EXPECT_TRUE(document["cpu"]["total"].is_null());
    EXPECT_TRUE(document["processes"][0]["cpuPercent"].is_null());
    EXPECT_TRUE(document["disk"]["readRate"].is_null());
    EXPECT_TRUE(knownIn(snapshot, sysinfo::SystemRoot::host()).cpu) << "this machine may be idle";
}

TEST(Json, CountersThatThePlatformDoesNotKeepAreNull) {
    const Snapshot snapshot = sampleSnapshot();
    Known known = knownIn(snapshot, sysinfo::SystemRoot::host());
    known.capabilities = {};
    EXPECT_EQ(nullsIn(reparsed(snapshot.mem, known)),
              (std::vector<std::string>{"pageSize", "speculative", "cowFaults", "lookups", "hits"}));
    EXPECT_EQ(nullsIn(reparsed(snapshot.rates, known)),
              (std::vector<std::string>{"cowFaults", "cacheHitRatio"}));
    known.capabilities = {.cowFaults = true, .objectCache = true, .speculative = true};
    EXPECT_EQ(reparsed(snapshot.mem, known)["lookups"], 0);
}

TEST(Json, NumbersAreExactToSixDecimalsAndNeverNaN) {
    const std::vector<std::pair<double, std::string>> cases{
        {0, "0"},
        {-0.0, "0"},
        {0.1 + 0.2, "0.3"},
        {12.000001, "12.000001"},
        {0.0000004, "0"},
        {-12.5, "-12.5"},
        {99.9999999, "100"},
        {1700000000.123457, "1700000000.123457"},
        {1e15, "1e+15"},
        {std::nan(""), "null"},
        {-INFINITY, "null"},
    };
    for (const auto& [value, expected] : cases) {
        JsonWriter json;
        json.number(value);
        EXPECT_EQ(json.text(), expected);
    }
    EXPECT_EQ(reparsed(UINT64_MAX), UINT64_MAX);
    EXPECT_EQ(reparsed(INT64_MIN), INT64_MIN);
}

TEST(Json, HostileNamesStayOneWellFormedString) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"plain", "plain"},
        {"say \"hi\" \\ \n\r\t\x01\x1b[2J\x7f", "say \"hi\" \\ \n\r\t\x01\x1b[2J\x7f"},
        {std::string("nul\0inside", 10), std::string("nul\0inside", 10)},
        {"größe 日本 🦊", "größe 日本 🦊"},
        {"cut \xE6\x97", "cut \uFFFD"},
        {"lone \xFF\xC0\xAF", "lone \uFFFD\uFFFD\uFFFD"},
        {"surrogate \xED\xA0\x80 end", "surrogate \uFFFD\uFFFD\uFFFD end"},
        {"beyond \xF4\x90\x80\x80", "beyond \uFFFD\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& [name, expected] : cases) EXPECT_EQ(reparsed(name), expected);
}

} // namespace
} // namespace quarn::cli
