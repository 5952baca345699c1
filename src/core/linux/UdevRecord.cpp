#include "core/linux/UdevRecord.h"

#include "core/Scan.h"

namespace sysinfo::platform {

std::optional<std::string_view> udevProperty(std::string_view record, std::string_view name) {
    while (!record.empty()) {
        std::string_view line = scutil::takeLine(record);
        if (!line.starts_with("E:")) continue;
        line.remove_prefix(2);
        if (scutil::takeUntil(line, '=') == name) return line;
    }
    return {};
}

std::string decodeUdev(std::string_view text) {
    std::string decoded;
    while (!text.empty()) {
        size_t taken = 1;
        char c = text.front();
        if (text.size() >= 4 && text.starts_with("\\x")) {
            if (const auto code = scutil::toNumber<uint8_t>(text.substr(2, 2), 16)) {
                c = static_cast<char>(*code);
                taken = 4;
            }
        }
        decoded += c;
        text.remove_prefix(taken);
    }
    return std::string(scutil::trimmed(decoded));
}

} // namespace sysinfo::platform
