#include "core/Scan.h"
#include "core/linux/Cpu.h"
#include "core/linux/ProcessFiles.h"
#include "core/linux/Readers.h"

#include <array>
#include <cmath>
#include <pwd.h>
#include <time.h>
#include <unistd.h>

namespace sysinfo::platform {

uint64_t monotonicRawNs() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC_RAW, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(now.tv_nsec);
}

double asleepSeconds() {
    timespec withSleep{}, without{};
    ::clock_gettime(CLOCK_BOOTTIME, &withSleep);
    ::clock_gettime(CLOCK_MONOTONIC, &without);
    return static_cast<double>(withSleep.tv_sec - without.tv_sec) +
           static_cast<double>(withSleep.tv_nsec - without.tv_nsec) / 1e9;
}

std::optional<uint64_t> bootTime(const SystemRoot& root) {
    const auto stat = readTable(root.path("proc/stat"));
    return stat ? parseStatNumber(*stat, "btime") : std::nullopt;
}

std::optional<double> uptime(Readers& readers) {
    if (readers.root.isHost()) {
        timespec now{};
        if (::clock_gettime(CLOCK_BOOTTIME, &now) == 0) return static_cast<double>(now.tv_sec);
    }
    auto text = readers.uptime.read();
    if (!text) return {};
    const auto seconds = scutil::toNumber<double>(scutil::takeWord(*text));
    return seconds && std::isfinite(*seconds) ? std::optional(std::floor(*seconds)) : std::nullopt;
}

int loadAverage(Readers& readers, double out[3]) {
    std::fill(out, out + 3, 0.0);
    auto text = readers.loadavg.read();
    if (!text) return -1;
    for (int i = 0; i < 3; ++i) {
        const auto load = scutil::toNumber<double>(scutil::takeWord(*text));
        if (!load || !std::isfinite(*load)) return i == 0 ? -1 : i;
        out[i] = *load;
    }
    return 3;
}

bool isRoot() { return ::geteuid() == 0; }

std::optional<std::string> userName(const SystemRoot& root, uint32_t uid) {
    // The file first: it answers at once, while a directory service may have to be asked over the network.
    if (const auto accounts = readTable(root.path("etc/passwd"))) {
        std::string_view rest = *accounts;
        while (!rest.empty()) {
            std::string_view line = scutil::takeLine(rest);
            const std::string_view name = scutil::takeUntil(line, ':');
            scutil::takeUntil(line, ':');
            if (scutil::toNumber<uint32_t>(scutil::takeUntil(line, ':')) == uid) return std::string(name);
        }
    }
    if (!root.isHost()) return {};
    passwd account{};
    passwd* found = nullptr;
    std::array<char, 4096> buffer;
    ::getpwuid_r(uid, &account, buffer.data(), buffer.size(), &found);
    return found ? std::optional<std::string>(found->pw_name) : std::nullopt;
}

std::optional<uint64_t> processStartMicros(const SystemRoot& root, int32_t pid) {
    const auto text = readTable(root.path("proc/" + std::to_string(pid) + "/stat"));
    const auto boot = bootTime(root);
    if (!text || !boot) return {};
    const auto stat = parseProcessStat(*text);
    return stat ? std::optional(startMicros(*boot, stat->startTicks)) : std::nullopt;
}

std::string sysctlString(const SystemRoot& root, std::string_view name) {
    std::string relative = "proc/sys/";
    for (const char c : name) relative += c == '.' ? '/' : c;
    return readAttribute(root.path(relative)).value_or("");
}

uint64_t sysctlU64(const SystemRoot& root, std::string_view name) {
    return scutil::toNumber<uint64_t>(sysctlString(root, name)).value_or(0);
}

} // namespace sysinfo::platform
