#include "ui/modules/MemoryParts.h"

#include <numeric>

namespace quarn {

std::vector<MemoryPart> memoryParts(const SCMem& mem) {
    if (mem.total == 0) return {};
    std::vector<MemoryPart> parts{
        {"Applications", "What programs hold themselves and share with each other.", mem.app},
        {"Kernel", "What the system needs for itself; it cannot be swapped out (wired).", mem.wired},
        {"Compressed", "What takes the place of memory that was compressed.", mem.compressed},
        {"File cache", "Files kept at hand; given to programs when they ask for it.", mem.cached, true},
        {"Free", "Not used for anything.", mem.freeBytes, true},
    };
    const auto sum = std::accumulate(parts.begin(), parts.end(), uint64_t{0},
                                     [](uint64_t so, const MemoryPart& part) { return so + part.bytes; });
    const uint64_t rest = mem.total > sum ? mem.total - sum : 0;
    if (rest > mem.total / 100)
        parts.insert(parts.begin() + 3, {"Other", "What the system's counters do not account for.", rest});
    return parts;
}

std::string_view pressureText(uint32_t level) {
    if (level >= 4) return "Memory is very short";
    return level >= 2 ? "Memory is short" : "Enough memory";
}

} // namespace quarn
