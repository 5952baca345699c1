#include "history/ArchiveColumns.h"
#include "history/LiveSupport.h"
#include "history/PropertyListReader.h"
#include "history/PropertyListWriter.h"
#include "history/Support.h"

#include <cmath>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <plist/plist.h>

namespace quarn::testing {

std::string describe(const HistorySample& s) {
    const auto text = [](const auto& optional) { return optional ? fmt::format("{}", *optional) : "absent"; };
    std::string result = fmt::format(
        "{}",
        fmt::join(std::tuple(epochSeconds(s.time), s.generation, s.cpuTotal, s.cpuSystem, s.memUsed,
                             s.processCount, s.cpuUser, s.memSwap, s.diskRead, s.diskWrite, s.netRx, s.netTx,
                             s.threads, text(s.sysWatts), text(s.cpuWatts), text(s.gpuUtil), text(s.hotspotC),
                             text(s.batteryPercent), text(s.npuWatts), text(s.batteryWatts), s.gpuMemUsed,
                             s.encoderWatts, s.decoderWatts, s.diskActive, s.pageIn, s.pageOut, s.gpuRenderer,
                             s.gpuTiler, s.sensorGroupMax, s.perCore, s.perCoreSystem, s.disksGeneration,
                             s.interfacesGeneration),
                  " "));
    for (const HistoryProc& p : s.top)
        result += fmt::format(" {}={} {} {} {}", p.pid, p.name.view(), p.cpu, p.mem, p.accessible);
    for (const DeviceRates* rates : {&s.diskRates, &s.interfaceRates})
        for (const auto& [name, rate] : *rates)
            result += fmt::format(" {}:{}/{}", name.view(), rate.down, rate.up);
    return result;
}

AppLiveHistory twoApps() {
    AppLiveHistory apps;
    for (const int64_t second : {0, 30, 60, 90})
        apps.add(wallTime(liveNow + second),
                 std::vector<AppActivity>{{"/apps/editor", 1000, {2'000'000'000, 10, 20, 5, 7, true}},
                                          {"/apps/größe", 500, {}}});
    apps.name({{"/apps/editor", "Editor"}});
    return apps;
}

namespace {

using HistoryArchive::Content;
using Ref = PropertyListWriter::Ref;

const std::vector<SharedSample> samples{fullSample(liveNow + 0.25), sampleAt(liveNow + 1.5),
                                        fullSample(liveNow + 2.125)};
const std::vector<HistoryBreak> breaks{{liveNow - 100.5, liveNow - 50}};

Data archive() { return HistoryArchive::encode(samples, breaks, twoApps()); }

std::optional<Content> decoded(const Data& data) {
    auto result = HistoryArchive::decode(data);
    auto* content = std::get_if<Content>(&result);
    return content ? std::optional(std::move(*content)) : std::nullopt;
}

TEST(HistoryArchive, KeepsEverything) {
    const auto content = decoded(archive());
    ASSERT_TRUE(content);
    ASSERT_EQ(content->samples.size(), samples.size());
    for (size_t i = 0; i < samples.size(); ++i) {
        EXPECT_EQ(describe(*content->samples[i]), describe(*samples[i]));
        EXPECT_TRUE(content->samples[i]->restored);
    }
    EXPECT_EQ(content->breaks, breaks);
    const auto then = [](const AppLiveHistory& apps) {
        return byApp(apps.totals(wallTime(liveNow + 90), AppHistoryMetric::cpu, 10));
    };
    EXPECT_EQ(then(twoApps()).size(), 2u);
    EXPECT_EQ(then(content->apps), then(twoApps()));
    ASSERT_TRUE(decoded(HistoryArchive::encode({}, {}, {})));
}

TEST(HistoryArchive, EveryTruncationIsUnreadableAndNoDamageDoesHarm) {
    const Data whole = archive();
    for (size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decoded(Data(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)))) << length;
    for (size_t at = 0; at < whole.size(); ++at) {
        Data damaged = whole;
        damaged[at] ^= static_cast<uint8_t>(1 << at % 8);
        decoded(damaged); // the sanitizers watch
    }
}

/// An archive of two samples with one thing changed.
struct Draft {
    int64_t version = 1, count = 2, appSamples = 0;
    std::map<std::string, std::vector<double>> columns{{"time", {liveNow, liveNow + 1}}};
    std::vector<std::string> deviceKeys{"sda"}, appKeys, appNames;
    std::vector<std::vector<double>> breaks;
    bool timesAreTexts = false;

    Data made() const {
        PropertyListWriter list;
        std::vector<std::pair<std::string_view, Ref>> entries;
        for (const auto& [name, values] : columns)
            entries.emplace_back(name, timesAreTexts ? list.strings({"1", "2"}) : list.reals(values));
        std::vector<Ref> pairs;
        for (const auto& each : breaks) pairs.push_back(list.reals(each));
        return list.finish(list.dictionary({{"version", list.integer(version)},
                                            {"count", list.integer(count)},
                                            {"columns", list.dictionary(entries)},
                                            {"breaks", list.array(pairs)},
                                            {"deviceKeys", list.strings(deviceKeys)},
                                            {"appKeys", list.strings(appKeys)},
                                            {"appNames", list.strings(appNames)},
                                            {"appSamples", list.integer(appSamples)}}));
    }
};

TEST(HistoryArchive, WhatDoesNotFitIsUnreadable) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const auto columns = [](std::map<std::string, std::vector<double>> changed) {
        return [changed = std::move(changed)](Draft& d) {
            for (const auto& [name, values] : changed) d.columns[name] = values;
        };
    };
    const std::pair<const char*, std::function<void(Draft&)>> cases[]{
        {"a later version", [](Draft& d) { d.version = 2; }},
        {"fewer samples than counted", [](Draft& d) { d.count = 3; }},
        {"an absurd count", [](Draft& d) { d.count = INT64_MAX; }},
        {"a negative count", [](Draft& d) { d.count = -1; }},
        {"no time", [](Draft& d) { d.columns.erase("time"); }},
        {"a time that is none", columns({{"time", {liveNow, nan}}})},
        {"a time beyond all clocks", columns({{"time", {liveNow, 1e300}}})},
        {"texts for numbers", [](Draft& d) { d.timesAreTexts = true; }},
        {"negative memory", columns({{"memUsed", {-1, 0}}})},
        {"an infinite share", columns({{"cpuTotal", {INFINITY, 0}}})},
        {"lists longer than their values", columns({{"perCore.count", {1, 1}}, {"perCore", {1}}})},
        {"half a list", columns({{"perCore.count", {0.5, 0.5}}, {"perCore", {1}}})},
        {"an absurd list", columns({{"perCore.count", {1e18, 0}}})},
        {"a list without values", columns({{"perCore.count", {1, 0}}})},
        {"a device that has no name", columns({{"diskRates.count", {1, 0}},
                                               {"diskRates.device", {1}},
                                               {"diskRates.down", {0}},
                                               {"diskRates.up", {0}}})},
        {"a break without an end", [](Draft& d) { d.breaks = {{1}}; }},
        {"a break that never ends",
         [](Draft& d) {
             d.breaks.push_back({1, INFINITY});
         }},
        {"applications without columns", [](Draft& d) { d.appSamples = 1, d.appKeys = d.appNames = {"a"}; }},
        {"applications without names", [](Draft& d) { d.appSamples = 1, d.appKeys = {"a"}; }},
    };
    for (const auto& [what, change] : cases) {
        Draft draft;
        change(draft);
        EXPECT_FALSE(decoded(draft.made())) << what;
    }
    const auto old = decoded(Draft().made()); // by a version that knew fewer readings
    ASSERT_TRUE(old);
    EXPECT_TRUE(std::isnan(old->samples[1]->cpuTotal));
    EXPECT_FALSE(old->samples[1]->sysWatts);
}

TEST(PropertyList, HostileDocumentsCostLittle) {
    // Forty arrays, each of a hundred times the next one: more numbers than there are atoms.
    PropertyListWriter list;
    Ref inner = list.real(1);
    for (int depth = 0; depth < 40; ++depth) inner = list.array(std::vector<Ref>(100, inner));
    const Data bomb = list.finish(list.dictionary({{"version", list.integer(1)}, {"columns", inner}}));
    EXPECT_FALSE(decoded(bomb));

    PropertyListWriter many; // one long column under many names
    const Ref column = many.reals(std::vector<double>(100'000, 1));
    std::vector<std::string> names;
    for (int i = 0; i < 500; ++i) names.push_back(std::to_string(i));
    std::vector<std::pair<std::string_view, Ref>> entries;
    for (const auto& name : names) entries.emplace_back(name, column);
    const Ref columns = many.dictionary(entries), count = many.integer(0), version = many.integer(1);
    EXPECT_FALSE(decoded(
        many.finish(many.dictionary({{"version", version}, {"count", count}, {"columns", columns}}))));
}

// ---- Against another implementation of the format

struct Freed {
    void operator()(void* list) const { plist_free(list); }
};
using OtherList = std::unique_ptr<void, Freed>;

OtherList readByOthers(const Data& data) {
    plist_t list = nullptr;
    plist_from_bin(reinterpret_cast<const char*>(data.data()), static_cast<uint32_t>(data.size()), &list);
    return OtherList(list);
}

double numberAt(plist_t array, uint32_t index) {
    double value = 0;
    plist_get_real_val(plist_array_get_item(array, index), &value);
    return value;
}

TEST(PropertyList, OtherProgramsReadTheArchive) {
    const OtherList list = readByOthers(archive());
    ASSERT_TRUE(list);
    const auto at = [&](const char* key) { return plist_dict_get_item(list.get(), key); };
    uint64_t version = 0;
    plist_get_uint_val(at("version"), &version);
    EXPECT_EQ(version, 1u);
    EXPECT_EQ(numberAt(plist_dict_get_item(at("columns"), "time"), 1), liveNow + 1.5);
    EXPECT_TRUE(std::isnan(numberAt(plist_dict_get_item(at("columns"), "sysWatts"), 1)));
    EXPECT_EQ(numberAt(plist_array_get_item(at("breaks"), 0), 1), liveNow - 50);
    EXPECT_STREQ(plist_get_string_ptr(plist_array_get_item(at("topNames"), 1), nullptr), "Größe \U0001F600");
}

TEST(PropertyList, ManyObjectsMakeWiderReferences) {
    for (const size_t count : {200, 300, 70'000}) {
        PropertyListWriter writer;
        std::vector<double> values(count);
        for (size_t i = 0; i < count; ++i) values[i] = static_cast<double>(i) + 0.5;
        const Data data = writer.finish(writer.reals(values));
        EXPECT_EQ(PropertyListReader::open(data)->top().numbers(count), values);
        const OtherList list = readByOthers(data);
        ASSERT_EQ(plist_array_get_size(list.get()), count);
        EXPECT_EQ(numberAt(list.get(), static_cast<uint32_t>(count - 1)), values.back());
    }
}

TEST(PropertyList, ReadsWhatOtherProgramsWrite) {
    const OtherList made(plist_new_dict());
    const plist_t array = plist_new_array(), long_ = plist_new_array();
    for (const double value : {1.5, std::numeric_limits<double>::quiet_NaN()})
        plist_array_append_item(array, plist_new_real(value));
    plist_array_append_item(array, plist_new_uint(300));
    for (int i = 0; i < 300; ++i) plist_array_append_item(long_, plist_new_uint(static_cast<uint64_t>(i)));
    plist_dict_set_item(made.get(), "numbers", array);
    plist_dict_set_item(made.get(), "long", long_);
    plist_dict_set_item(made.get(), "text", plist_new_string("Größe \U0001F600"));
    plist_dict_set_item(made.get(), "yes", plist_new_bool(1));
    char* bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(made.get(), &bytes, &length);
    const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);

    const Data data(bytes, bytes + length);
    const auto list = PropertyListReader::open(data);
    ASSERT_TRUE(list);
    const auto top = list->top();
    const auto numbers = top["numbers"]->numbers(3);
    ASSERT_TRUE(numbers);
    EXPECT_EQ((*numbers)[0], 1.5);
    EXPECT_TRUE(std::isnan((*numbers)[1]));
    EXPECT_EQ((*numbers)[2], 300);
    EXPECT_FALSE(top["numbers"]->numbers(2));
    EXPECT_EQ(top["long"]->items(300)->back().integer(), 299);
    EXPECT_EQ(top["text"]->string(100), "Größe \U0001F600");
    EXPECT_FALSE(top["text"]->string(3));
    EXPECT_FALSE(top["yes"]->number());
    EXPECT_FALSE(top["nothing"]);
}

} // namespace
} // namespace quarn::testing
