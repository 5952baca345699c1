#pragma once

#include "core/sc.h"

#include <string_view>
#include <vector>

namespace quarn {

/// One part of what is built in.
struct MemoryPart {
    std::string_view name;    ///< "Applications", "Kernel", "Compressed", "File cache", "Free", "Other"
    std::string_view meaning; ///< one sentence
    uint64_t bytes = 0;
    bool available = false; ///< given to programs when they ask for it
};

/// What the memory is used for, in the order of a bar from left to right; the parts make up `total`. "Other"
/// is what no counter accounts for, and is left out when it is less than a hundredth. Empty when the total is
/// not known.
std::vector<MemoryPart> memoryParts(const SCMem& mem);

/// The pressure level in words: "Enough memory", "Memory is short", "Memory is very short".
std::string_view pressureText(uint32_t level);

} // namespace quarn
