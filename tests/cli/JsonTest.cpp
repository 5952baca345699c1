#include "cli/Json.h"
#include "desktop/SampleMachine.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace quarn::cli {
namespace {

using Parsed = nlohmann::ordered_json;
using testing::SampleMachine;

template <class T>
Parsed reparsed(const T& value, const Known& known = {}) {
    JsonWriter json;
    writeJson(json, value, known);
    return Parsed::parse(json.text());
}

std::string keysOf(const Parsed& object) {
    std::string keys;
    for (const auto& [key, value] : object.items()) keys += key + ' ';
    return keys;
}

/// The nulls among the direct fields of `object`.
std::string nullsIn(const Parsed& object) {
    std::string keys;
    for (const auto& [key, value] : object.items()) {
        if (value.is_null()) keys += key + ' ';
    }
    return keys;
}

TEST(Json, SnapshotCarriesItsFigures) {
    Snapshot snapshot = SampleMachine{}.at(30);
    snapshot.timestamp += std::chrono::milliseconds(250);
    snapshot.thermalState = ThermalState::fair;
    const Parsed document = reparsed(snapshot);
    EXPECT_EQ(document["cpu"]["perCore"].size(), 8u);
    EXPECT_EQ(document["processes"].size(), 180u);
    EXPECT_EQ(document["processes"][2]["name"], "Web Content");
    EXPECT_NEAR(document["processes"][2]["diskReadRate"], snapshot.processes[2].diskReadRate, 1e-6);
    EXPECT_EQ(document["mem"]["swapUsed"], 420u << 20);
    EXPECT_EQ(document["timestamp"], 1700300030.25);
    EXPECT_EQ(document["thermalState"], "elevated");
    EXPECT_EQ(document["loadAvg"], (Parsed{2.31, 1.84, 1.4}));
}

TEST(Json, WhatAProcessHidesIsNull) {
    ProcInfo process;
    process.pid = 7;
    process.state = "—";
    EXPECT_EQ(
        nullsIn(reparsed(process)),
        "user state path cpuPercent memBytes threads cpuTimeNs startTime startTimeMicros diskRead diskWrite "
        "diskReadRate diskWriteRate contextSwitches cswRate energyNj watts ");
    // Measured, but its disk use belongs to someone else.
    EXPECT_EQ(nullsIn(reparsed(SampleMachine{}.at(30).processes[3])),
              "diskRead diskWrite diskReadRate diskWriteRate energyNj watts ");
}

/// Expects nulls at the JSON pointers.
void expectNulls(const Parsed& document, std::initializer_list<const char*> pointers) {
    for (const char* pointer : pointers)
        EXPECT_TRUE(document.at(Parsed::json_pointer(pointer)).is_null()) << pointer;
}

TEST(Json, RatesOfAFirstSampleAreNull) {
    Snapshot snapshot = SampleMachine{}.at(30);
    snapshot.generation = snapshot.processGeneration = 1;
    const Parsed document = reparsed(snapshot, knownIn(snapshot, sysinfo::SystemRoot::host()));
    expectNulls(document, {"/cpu/total", "/cpu/perCore", "/net/rxRate", "/disk/readRate",
                           "/processes/0/cpuPercent", "/rates/faults"});
    EXPECT_EQ(document["net"]["rxBytes"], 74'210'000'000);
    EXPECT_EQ(document["mem"]["used"], snapshot.mem.used);
}

TEST(Json, WhatACapturedMachineLacksIsNull) {
    Snapshot snapshot;
    snapshot.generation = snapshot.processGeneration = 2;
    snapshot.gpu = {-1, -1, -1, 0, 0};
    const Parsed document = reparsed(snapshot, knownIn(snapshot, sysinfo::SystemRoot("/nowhere")));
    for (const auto* record : {"cpu", "mem", "net", "gpu"}) {
        EXPECT_EQ(nullsIn(document[record]), keysOf(document[record])) << record;
    }
    expectNulls(document, {"/uptime", "/battery", "/power/sysWatts", "/disk/readBytes"});
}

TEST(Json, ACaptureThatStandsStillHasNoRates) {
    Snapshot snapshot = SampleMachine{}.at(30);
    const sysinfo::SystemRoot captured("/somewhere");
    EXPECT_TRUE(knownIn(snapshot, captured).rates) << "a live machine mounted elsewhere";
    snapshot.cpu.total = 0;
    expectNulls(reparsed(snapshot, knownIn(snapshot, captured)),
                {"/cpu/total", "/processes/0/cpuPercent", "/disk/readRate"});
    EXPECT_TRUE(knownIn(snapshot, sysinfo::SystemRoot::host()).cpu) << "this machine may be idle";
}

TEST(Json, CountersThatThePlatformDoesNotKeepAreNull) {
    Snapshot snapshot = SampleMachine{}.at(30);
    snapshot.mem.pageSize = 0;
    Known known = knownIn(snapshot, sysinfo::SystemRoot::host());
    known.capabilities = {};
    EXPECT_EQ(nullsIn(reparsed(snapshot.mem, known)), "pageSize speculative cowFaults lookups hits ");
    EXPECT_EQ(nullsIn(reparsed(snapshot.rates, known)), "cowFaults cacheHitRatio ");
    known.capabilities = {.cowFaults = true, .objectCache = true, .speculative = true};
    EXPECT_EQ(reparsed(snapshot.mem, known)["lookups"], 0);
}

TEST(Json, NumbersAreExactToSixDecimalsAndNeverNaN) {
    JsonWriter json;
    json.beginArray();
    for (const double value : {0.0, -0.0, 0.1 + 0.2, 12.000001, 0.0000004, -12.5, 99.9999999,
                               1700000000.123457, 1e15, std::nan(""), double{-INFINITY}})
        json.number(value);
    json.endArray();
    EXPECT_EQ(json.text(), "[0,0,0.3,12.000001,0,-12.5,100,1700000000.123457,1e+15,null,null]");
    EXPECT_EQ(reparsed(UINT64_MAX), UINT64_MAX);
    EXPECT_EQ(reparsed(INT64_MIN), INT64_MIN);
}

TEST(Json, HostileNamesStayOneWellFormedString) {
    for (const auto& name : {std::string("say \"hi\" \\ \n\r\t\x01\x1b[2J\x7f größe 日本 🦊"),
                             std::string("nul\0inside", 10)})
        EXPECT_EQ(reparsed(name), name);
    EXPECT_EQ(reparsed(std::string("lone \xFF\xC0, cut \xE6\x97")), "lone \uFFFD\uFFFD, cut \uFFFD");
}

} // namespace
} // namespace quarn::cli
