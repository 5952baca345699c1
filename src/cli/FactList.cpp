#include "cli/FactList.h"

#include "ui/modules/Format.h"

#include <algorithm>

namespace quarn::cli {
namespace {

constexpr int longestText = 4096;

} // namespace

void FactList::heading(std::string text) { lines_.push_back({std::move(text), {}, true}); }

void FactList::add(std::string name, std::string value, std::string reason) {
    if (value.empty()) {
        value = format::unknown;
        if (!reason.empty()) value += "  (" + reason + ")";
    }
    lines_.push_back({std::move(name), std::move(value)});
}

std::string FactList::text() const {
    int width = 0;
    for (const Line& line : lines_)
        if (!line.isHeading) width = std::max(width, cellsOf(line.name, charset_));
    std::string result;
    for (const Line& line : lines_) {
        const std::string name = fitted(line.name, longestText, charset_);
        if (line.isHeading) {
            result += (result.empty() ? "" : "\n") + name + "\n";
            continue;
        }
        result += "  " + name;
        result.append(static_cast<size_t>(width - cellsOf(line.name, charset_)) + 2, ' ');
        result += fitted(line.value, longestText, charset_) + "\n";
    }
    return result;
}

} // namespace quarn::cli
