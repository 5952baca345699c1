// The samples of the live history as columns, and back.
#include "history/ArchiveCells.h"

namespace quarn {

using namespace archive;

namespace {

using Column = ArchiveColumns::Column;

constexpr size_t mostItems = 10'000; ///< in a list of one sample

const HistorySample noSample;

/// Calls visit(column name, field) for each field that is a single number.
template <class Sample, class Visit>
void visitFields(Sample& sample, const Visit& visit) {
    visit("time", sample.time);
    visit("generation", sample.generation);
    visit("cpuTotal", sample.cpuTotal);
    visit("cpuSystem", sample.cpuSystem);
    visit("memUsed", sample.memUsed);
    visit("processCount", sample.processCount);
    visit("cpuUser", sample.cpuUser);
    visit("memSwap", sample.memSwap);
    visit("diskRead", sample.diskRead);
    visit("diskWrite", sample.diskWrite);
    visit("netRx", sample.netRx);
    visit("netTx", sample.netTx);
    visit("sysWatts", sample.sysWatts);
    visit("cpuWatts", sample.cpuWatts);
    visit("gpuUtil", sample.gpuUtil);
    visit("hotspotC", sample.hotspotC);
    visit("batteryPercent", sample.batteryPercent);
    visit("threads", sample.threads);
    visit("npuWatts", sample.npuWatts);
    visit("gpuMemUsed", sample.gpuMemUsed);
    visit("encoderWatts", sample.encoderWatts);
    visit("decoderWatts", sample.decoderWatts);
    visit("diskActive", sample.diskActive);
    visit("pageIn", sample.pageIn);
    visit("pageOut", sample.pageOut);
    visit("batteryWatts", sample.batteryWatts);
    visit("gpuRenderer", sample.gpuRenderer);
    visit("gpuTiler", sample.gpuTiler);
    visit("disksGeneration", sample.disksGeneration);
    visit("interfacesGeneration", sample.interfacesGeneration);
}

/// Calls visit(name, list) for each list of plain numbers.
template <class Sample, class Visit>
void visitLists(Sample& sample, const Visit& visit) {
    visit("sensorGroupMax", sample.sensorGroupMax);
    visit("perCore", sample.perCore);
    visit("perCoreSystem", sample.perCoreSystem);
}

std::string joined(std::string_view name, std::string_view field) {
    return std::string(name).append(".").append(field);
}

/// Where the values of each sample begin in a flattened list, and at last where they end; all 0 when the
/// list is missing.
std::vector<size_t> beginsOf(const ArchiveColumns& from, std::string_view name) {
    std::vector<size_t> begins(from.count + 1);
    const Column* counts = find(from, joined(name, "count"), from.count);
    for (size_t i = 0; counts && i < from.count; ++i)
        begins[i + 1] = begins[i] + placeBelow(mostItems + 1, (*counts)[i]);
    return begins;
}

void addRates(ArchiveColumns& to, std::string_view name, std::span<const SharedSample> samples,
              DeviceRates HistorySample::*member, TextTable& devices) {
    Column& counts = to.columns[joined(name, "count")];
    Column& device = to.columns[joined(name, "device")];
    Column& down = to.columns[joined(name, "down")];
    Column& up = to.columns[joined(name, "up")];
    for (const auto& sample : samples) {
        const DeviceRates& rates = (*sample).*member;
        counts.push_back(static_cast<double>(rates.size()));
        for (const auto& [key, rate] : rates) {
            device.push_back(devices.placeOf(key));
            down.push_back(rate.down);
            up.push_back(rate.up);
        }
    }
}

using Samples = std::vector<std::shared_ptr<HistorySample>>;

void takeRates(const ArchiveColumns& from, std::string_view name, const std::vector<Text>& devices,
               DeviceRates HistorySample::*member, const Samples& samples) {
    const auto begins = beginsOf(from, name);
    if (begins.back() == 0) return;
    const Column& device = column(from, joined(name, "device"), begins.back());
    const Column& down = column(from, joined(name, "down"), begins.back());
    const Column& up = column(from, joined(name, "up"), begins.back());
    for (size_t i = 0; i < samples.size(); ++i) {
        std::vector<std::pair<Text, DeviceRate>> rates(begins[i + 1] - begins[i]);
        for (size_t k = 0; k < rates.size(); ++k) {
            const size_t at = begins[i] + k;
            rates[k].first = devices[placeBelow(devices.size(), device[at])];
            takeCell(down[at], rates[k].second.down);
            takeCell(up[at], rates[k].second.up);
        }
        (*samples[i]).*member = std::move(rates);
    }
}

void addTop(ArchiveColumns& to, std::span<const SharedSample> samples) {
    TextTable names(to.topNames);
    Column &counts = to.columns["top.count"], &pid = to.columns["top.pid"], &name = to.columns["top.name"],
           &cpu = to.columns["top.cpu"], &mem = to.columns["top.mem"],
           &accessible = to.columns["top.accessible"];
    for (const auto& sample : samples) {
        counts.push_back(static_cast<double>(sample->top.size()));
        for (const HistoryProc& process : sample->top) {
            pid.push_back(cellOf(process.pid));
            name.push_back(names.placeOf(process.name));
            cpu.push_back(process.cpu);
            mem.push_back(cellOf(process.mem));
            accessible.push_back(cellOf(process.accessible));
        }
    }
}

void takeTop(const ArchiveColumns& from, const Samples& samples) {
    const auto begins = beginsOf(from, "top");
    const size_t all = begins.back();
    if (all == 0) return;
    const std::vector<Text> names(from.topNames.begin(), from.topNames.end());
    const Column &pid = column(from, "top.pid", all), &name = column(from, "top.name", all),
                 &cpu = column(from, "top.cpu", all), &mem = column(from, "top.mem", all),
                 &accessible = column(from, "top.accessible", all);
    for (size_t i = 0; i < samples.size(); ++i) {
        std::vector<HistoryProc> top(begins[i + 1] - begins[i]);
        for (size_t k = 0; k < top.size(); ++k) {
            const size_t at = begins[i] + k;
            takeCell(pid[at], top[k].pid);
            top[k].name = names[placeBelow(names.size(), name[at])];
            takeCell(cpu[at], top[k].cpu);
            takeCell(mem[at], top[k].mem);
            takeCell(accessible[at], top[k].accessible);
        }
        samples[i]->top = std::move(top);
    }
}

void addLists(ArchiveColumns& to, std::span<const SharedSample> samples) {
    std::vector<std::pair<Column*, Column*>> targets;
    visitLists(noSample, [&](std::string_view name, const auto&) {
        targets.emplace_back(&to.columns[joined(name, "count")], &to.columns[std::string(name)]);
    });
    for (const auto& sample : samples) {
        auto target = targets.begin();
        visitLists(*sample, [&](std::string_view, const auto& list) {
            target->first->push_back(static_cast<double>(list.size()));
            target->second->insert(target->second->end(), list.begin(), list.end());
            ++target;
        });
    }
}

void takeLists(const ArchiveColumns& from, const Samples& samples) {
    std::vector<std::pair<std::vector<size_t>, const Column*>> sources;
    visitLists(noSample, [&](std::string_view name, const auto&) {
        auto begins = beginsOf(from, name);
        const Column* values = begins.back() == 0 ? nullptr : &column(from, name, begins.back());
        sources.emplace_back(std::move(begins), values);
    });
    for (size_t i = 0; i < samples.size(); ++i) {
        auto source = sources.begin();
        visitLists(*samples[i], [&](std::string_view, auto& list) {
            const auto& [begins, values] = *source++;
            list.resize(begins[i + 1] - begins[i]);
            for (size_t k = 0; k < list.size(); ++k) takeCell((*values)[begins[i] + k], list[k]);
        });
    }
}

} // namespace

void ArchiveColumns::setSamples(std::span<const SharedSample> samples) {
    count = samples.size();
    std::vector<Column*> targets;
    visitFields(noSample, [&](std::string_view name, const auto&) {
        targets.push_back(&columns[std::string(name)]);
        targets.back()->reserve(count);
    });
    for (const auto& sample : samples) {
        auto target = targets.begin();
        visitFields(*sample,
                    [&](std::string_view, const auto& field) { (*target++)->push_back(cellOf(field)); });
    }
    addLists(*this, samples);
    addTop(*this, samples);
    TextTable devices(deviceKeys);
    addRates(*this, "diskRates", samples, &HistorySample::diskRates, devices);
    addRates(*this, "interfaceRates", samples, &HistorySample::interfaceRates, devices);
}

std::vector<SharedSample> ArchiveColumns::samples() const {
    std::vector<const Column*> sources;
    visitFields(noSample,
                [&](std::string_view name, const auto&) { sources.push_back(find(*this, name, count)); });
    require(count == 0 || sources.front() != nullptr); // a time is what every sample must have
    Samples samples;
    samples.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        auto sample = std::make_shared<HistorySample>();
        sample->restored = true;
        auto source = sources.begin();
        visitFields(*sample, [&](std::string_view, auto& field) {
            if (const Column* values = *source++) takeCell((*values)[i], field);
        });
        samples.push_back(std::move(sample));
    }
    takeLists(*this, samples);
    takeTop(*this, samples);
    const std::vector<Text> devices(deviceKeys.begin(), deviceKeys.end());
    takeRates(*this, "diskRates", devices, &HistorySample::diskRates, samples);
    takeRates(*this, "interfaceRates", devices, &HistorySample::interfaceRates, samples);
    return {samples.begin(), samples.end()};
}

} // namespace quarn
