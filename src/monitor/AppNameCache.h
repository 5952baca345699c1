#pragma once

#include "core/Text.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quarn {

/// Display names of bundles, each asked for once. Belongs to one thread.
class AppNameCache {
public:
    using NameOf = std::function<sysinfo::Text(std::string_view bundle)>;
    explicit AppNameCache(NameOf nameOf) : nameOf_(std::move(nameOf)) {}

    sysinfo::Text nameOf(std::string_view bundle) {
        const auto [place, isNew] = names_.try_emplace(std::string(bundle));
        if (isNew) place->second = nameOf_(bundle);
        return place->second;
    }

    /// Forgets everything when it holds more than anybody looks at: a crude bound, and enough.
    void trim() {
        constexpr size_t most = 64;
        if (names_.size() > most) names_.clear();
    }
    void clear() { names_.clear(); }
    size_t size() const { return names_.size(); }

private:
    NameOf nameOf_;
    std::unordered_map<std::string, sysinfo::Text> names_;
};

} // namespace quarn
