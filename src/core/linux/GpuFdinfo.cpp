#include "core/linux/GpuFdinfo.h"

#include "core/Scan.h"

#include <algorithm>

namespace sysinfo::platform {

namespace {

/// Takes `prefix` off the front of `key`.
bool takePrefix(std::string_view& key, std::string_view prefix) {
    if (!key.starts_with(prefix)) return false;
    key.remove_prefix(prefix.size());
    return true;
}

/// A number with an optional unit of bytes or hertz.
std::optional<uint64_t> scaled(std::string_view value) {
    const auto number = scutil::toNumber<uint64_t>(scutil::takeWord(value));
    const std::string_view unit = scutil::trimmed(value);
    const unsigned shift = unit == "KiB" ? 10 : unit == "MiB" ? 20 : unit == "GiB" ? 30 : 0;
    if (!number || *number > UINT64_MAX >> shift) return {};
    return *number << shift;
}

void addTo(std::optional<uint64_t>& sum, std::optional<uint64_t> bytes) {
    if (!bytes) return;
    const uint64_t before = sum.value_or(0);
    sum = *bytes > UINT64_MAX - before ? UINT64_MAX : before + *bytes;
}

class Parser {
public:
    std::optional<DrmUsage> parse(std::string_view text) {
        while (!text.empty()) {
            std::string_view line = scutil::takeLine(text);
            std::string_view key = scutil::trimmed(scutil::takeUntil(line, ':'));
            if (takePrefix(key, "drm-")) take(key, scutil::trimmed(line));
        }
        if (usage_.driver.empty()) return {};
        // The older name of the same figure, which some drivers still print beside the new ones.
        if (!usage_.residentBytes) usage_.residentBytes = memory_;
        return std::move(usage_);
    }

private:
    void take(std::string_view key, std::string_view value) {
        if (key == "driver")
            usage_.driver = value;
        else if (key == "pdev")
            usage_.slot = value;
        else if (key == "client-id")
            usage_.clientId = scutil::toNumber<uint64_t>(value);
        else if (takePrefix(key, "engine-capacity-"))
            takeCapacity(key, value);
        else if (takePrefix(key, "engine-"))
            engine(key).busyNs = scaled(value);
        else if (takePrefix(key, "total-cycles-"))
            engine(key).totalCycles = scaled(value);
        else if (takePrefix(key, "cycles-"))
            engine(key).cycles = scaled(value);
        else if (takePrefix(key, "maxfreq-"))
            engine(key).maxHz = scaled(value).value_or(0);
        else if (takePrefix(key, "resident-"))
            addTo(usage_.residentBytes, scaled(value));
        else if (takePrefix(key, "total-"))
            addTo(usage_.totalBytes, scaled(value));
        else if (takePrefix(key, "memory-"))
            addTo(memory_, scaled(value));
    }

    void takeCapacity(std::string_view name, std::string_view value) {
        const auto count = scutil::toNumber<uint32_t>(value);
        if (count && *count > 0) engine(name).capacity = *count;
    }

    DrmEngine& engine(std::string_view name) {
        auto& engines = usage_.engines;
        const auto known = std::find_if(engines.begin(), engines.end(),
                                        [&](const DrmEngine& candidate) { return candidate.name == name; });
        if (known != engines.end()) return *known;
        engines.emplace_back().name = name;
        return engines.back();
    }

    DrmUsage usage_;
    std::optional<uint64_t> memory_;
};

} // namespace

std::optional<DrmUsage> parseDrmUsage(std::string_view text) { return Parser().parse(text); }

} // namespace sysinfo::platform
