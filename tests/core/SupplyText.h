#pragma once

#include "core/linux/PowerSupply.h"

namespace quarn::testing {

/// A power supply whose driver offers `attributes`, "type=Mains;online=1"; the first of a name counts.
inline sysinfo::PowerSupply supply(const std::string& attributes) {
    return sysinfo::platform::describePowerSupply("BAT0", [&](std::string_view key) {
        const std::string all = ';' + attributes + ';', start = ';' + std::string(key) + '=';
        const size_t at = all.find(start);
        if (at == all.npos) return std::string();
        return all.substr(at + start.size(), all.find(';', at + 1) - at - start.size());
    });
}

} // namespace quarn::testing
