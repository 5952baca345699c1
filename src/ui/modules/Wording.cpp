#include "ui/modules/Wording.h"

#include <array>
#include <cctype>

namespace quarn {

namespace {

struct Replacement {
    std::string_view original;
    std::string_view here;
};

/// Whole words; where several match, the first.
constexpr std::array replacements{
    Replacement{"macOS notification", "desktop notification"},
    Replacement{"macOS", "the system"},
    Replacement{"Macs", "computers"},
    Replacement{"Mac", "computer"},
    Replacement{"Dock", "taskbar"},
    Replacement{"Finder", "file manager"},
    Replacement{"menu-bar modules", "tray items"},
    Replacement{"menu-bar module", "tray item"},
    Replacement{"menu bar", "tray"},
    Replacement{"Menu bar", "Tray"},
};

/// What makes "Mac" a part of a product's name, which stays.
constexpr std::array<std::string_view, 3> models{" mini", " Studio", " Pro"};

bool isWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || (static_cast<unsigned char>(c) & 0x80) != 0;
}

bool beginsSentence(std::string_view before) {
    while (!before.empty() && before.back() == ' ') before.remove_suffix(1);
    return before.empty() || before.back() == '.' || before.back() == '?';
}

const Replacement* replacementAt(std::string_view text, size_t at) {
    if (at > 0 && isWordCharacter(text[at - 1])) return nullptr;
    for (const Replacement& replacement : replacements) {
        if (!text.substr(at).starts_with(replacement.original)) continue;
        const std::string_view rest = text.substr(at + replacement.original.size());
        if (!rest.empty() && isWordCharacter(rest.front())) continue;
        bool isModel = false;
        for (const auto model : models) isModel |= replacement.original == "Mac" && rest.starts_with(model);
        if (!isModel) return &replacement;
    }
    return nullptr;
}

} // namespace

std::string worded(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const Replacement* replacement = replacementAt(text, at);
        if (!replacement) {
            result += text[at++];
            continue;
        }
        const size_t start = result.size();
        result += replacement->here;
        if (beginsSentence(text.substr(0, at)))
            result[start] = static_cast<char>(std::toupper(static_cast<unsigned char>(result[start])));
        at += replacement->original.size();
    }
    return result;
}

} // namespace quarn
