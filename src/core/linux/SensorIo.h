#pragma once

#include "core/SystemRoot.h"
#include "core/UniqueFd.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// How sensors are read: replaced in tests by readers that block or fail, with a clock that is driven.
namespace sysinfo::platform {

/// An attribute that is read again and again. Its descriptor stays open as long as reading succeeds, which
/// costs an eighth of opening it each time; after a failure it is opened anew, since the device may have
/// been replaced. Used by one thread at a time.
struct KeptAttribute {
    std::string path; ///< empty stands for an attribute that is not there
    scutil::UniqueFd fd;
};

struct SensorIo {
    /// One read into `buffer` from the start of the attribute; the bytes read, −1 on failure.
    std::function<long(KeptAttribute&, std::span<char> buffer)> read;
    /// Writes a whole attribute. Empty where nothing may be written: captured machines, ordinary users.
    std::function<bool(const std::string& path, std::string_view text)> write;
    /// Monotonic time.
    std::function<uint64_t()> nowNs;
    /// How long a chip may take before it is read apart from the others.
    uint64_t deadlineNs = 50'000'000;

    static SensorIo forRoot(const SystemRoot& root);
};

/// The attribute's text without blanks, line ends and NULs around it, in `buffer`; nullopt when unreadable.
std::optional<std::string_view> readText(const SensorIo& io, KeptAttribute& attribute,
                                         std::span<char> buffer);

/// The attribute as a decimal integer; nullopt when unreadable, empty or anything else.
std::optional<long long> readInteger(const SensorIo& io, KeptAttribute& attribute);

} // namespace sysinfo::platform
