#include "core/linux/GpuClients.h"

#include "core/linux/Files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <memory>

namespace sysinfo::platform {

namespace {

constexpr size_t callsForAll = 15;

bool isNumber(std::string_view name) {
    return !name.empty() &&
           std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

template <size_t count>
bool isOneOf(const std::array<std::string_view, count>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// What drivers call the engines that draw, and those that sort geometry beforehand.
constexpr std::array<std::string_view, 5> renderers{"render", "rcs", "fragment", "pp", "gpu"};
constexpr std::array<std::string_view, 3> tilers{"vertex-tiler", "bin", "gp"};

void keepLarger(std::optional<uint64_t>& value, const std::optional<uint64_t>& other) {
    if (other && (!value || *other > *value)) value = other;
}

DrmEngine* findEngine(std::vector<DrmEngine>& engines, std::string_view name) {
    const auto found = std::find_if(engines.begin(), engines.end(),
                                    [&](const DrmEngine& engine) { return engine.name == name; });
    return found == engines.end() ? nullptr : &*found;
}

void keepLarger(std::vector<DrmEngine>& engines, const std::vector<DrmEngine>& others) {
    for (const DrmEngine& other : others) {
        DrmEngine* engine = findEngine(engines, other.name);
        if (!engine) {
            engines.push_back(other);
            continue;
        }
        keepLarger(engine->busyNs, other.busyNs);
        keepLarger(engine->cycles, other.cycles);
        keepLarger(engine->totalCycles, other.totalCycles);
    }
}

double increase(const std::optional<uint64_t>& before, const std::optional<uint64_t>& now) {
    return before && now && *now > *before ? static_cast<double>(*now - *before) : 0;
}

/// The share that one client took of one kind of engine, in percent; nullopt when it cannot be told.
std::optional<double> share(const DrmEngine& before, const DrmEngine& now, double seconds) {
    double part = 0;
    if (now.busyNs)
        part = increase(before.busyNs, now.busyNs) / (seconds * 1e9);
    else if (now.cycles && now.totalCycles) {
        const double total = increase(before.totalCycles, now.totalCycles);
        if (total > 0) part = increase(before.cycles, now.cycles) / total;
    } else if (now.cycles && now.maxHz > 0)
        part = increase(before.cycles, now.cycles) / (seconds * static_cast<double>(now.maxHz));
    else
        return {};
    return part * 100 / now.capacity;
}

/// Shares by engine of one GPU, summed over clients.
using Shares = std::map<std::string, double, std::less<>>;

void raise(std::optional<double>& value, double other) { value = std::max(value.value_or(0), other); }

void takeShares(const Shares& shares, DrmLoad& load) {
    for (const auto& [name, sum] : shares) {
        const double percent = std::min(sum, 100.0);
        raise(load.busy, percent);
        if (isOneOf(renderers, name)) raise(load.renderer, percent);
        if (isOneOf(tilers, name)) raise(load.tiler, percent);
    }
}

} // namespace

void DrmDescriptors::update() {
    if (pending_.empty()) {
        someDenied_ = deniedThisRound_;
        deniedThisRound_ = false;
        for (std::string& name : listFolder(root_.path("proc")))
            if (isNumber(name)) pending_.push_back(std::move(name));
        slice_ = started_ ? pending_.size() / callsForAll + 1 : pending_.size();
    }
    for (size_t i = 0; i < slice_ && !pending_.empty(); ++i) {
        scan(pending_.front());
        pending_.pop_front();
    }
    if (!started_) someDenied_ = deniedThisRound_;
    started_ = true;
}

void DrmDescriptors::scan(const std::string& pid) {
    known_.erase(pid);
    const std::string process = root_.path("proc/" + pid);
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir((process + "/fd").c_str()), ::closedir);
    if (!folder) {
        deniedThisRound_ = deniedThisRound_ || errno == EACCES;
        return;
    }
    someSeen_ = true;
    std::vector<std::string> files;
    while (const dirent* entry = ::readdir(folder.get())) {
        if (!isNumber(entry->d_name)) continue;
        const auto target = readLink(process + "/fd/" + entry->d_name);
        if (target && target->starts_with("/dev/dri/")) files.push_back(process + "/fdinfo/" + entry->d_name);
    }
    if (!files.empty()) known_[pid] = std::move(files);
}

std::vector<DrmUsage> DrmDescriptors::read() {
    std::vector<DrmUsage> usages;
    for (auto process = known_.begin(); process != known_.end();) {
        // A descriptor that was closed, or opened anew as something else, is dropped.
        std::erase_if(process->second, [&](const std::string& file) {
            auto usage = parseDrmUsage(readTable(file).value_or(""));
            if (!usage) return true;
            usages.push_back(std::move(*usage));
            return false;
        });
        process = process->second.empty() ? known_.erase(process) : std::next(process);
    }
    return usages;
}

std::vector<DrmLoad> DrmLoads::advance(const std::vector<DrmUsage>& usages, double seconds) {
    Clients current;
    for (const DrmUsage& usage : usages) {
        if (!usage.clientId) continue; // cannot be told from its twins
        const std::string gpu = usage.driver + '|' + usage.slot;
        const auto [client, isNew] = current.try_emplace(gpu + '|' + std::to_string(*usage.clientId), usage);
        if (isNew) continue;
        keepLarger(client->second.engines, usage.engines);
        keepLarger(client->second.residentBytes, usage.residentBytes);
        keepLarger(client->second.totalBytes, usage.totalBytes);
    }

    std::map<std::string, DrmLoad> loads;
    std::map<std::string, Shares> shares;
    for (auto& [key, client] : current) {
        const std::string gpu = client.driver + '|' + client.slot;
        DrmLoad& load = loads[gpu];
        load.driver = client.driver;
        load.slot = client.slot;
        load.residentBytes += client.residentBytes.value_or(0);
        load.totalBytes += client.totalBytes.value_or(0);

        const auto previous = clients_.find(key);
        if (previous == clients_.end() || seconds <= 0) continue;
        keepLarger(client.engines, previous->second.engines);
        for (const DrmEngine& engine : client.engines) {
            const DrmEngine* before = findEngine(previous->second.engines, engine.name);
            if (!before) continue;
            if (const auto part = share(*before, engine, seconds)) shares[gpu][engine.name] += *part;
        }
    }
    clients_ = std::move(current);

    std::vector<DrmLoad> result;
    for (auto& [gpu, load] : loads) {
        takeShares(shares[gpu], load);
        result.push_back(std::move(load));
    }
    return result;
}

} // namespace sysinfo::platform
