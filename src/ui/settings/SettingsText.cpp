#include "ui/settings/SettingsText.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include <fmt/format.h>

// The only file that includes toml++: it is heavy. Its parser answers errors as values here.
#define TOML_EXCEPTIONS 0
#define TOML_HEADER_ONLY 1
#include <toml++/toml.h>

namespace quarn {

namespace {

SettingValue toSettingValue(const toml::node& node) {
    if (const auto* value = node.as_boolean()) return value->get();
    if (const auto* value = node.as_integer()) return value->get();
    if (const auto* value = node.as_floating_point()) return value->get();
    if (const auto* value = node.as_string()) return value->get();
    const auto* array = node.as_array();
    if (!array) return {};
    std::vector<std::string> texts;
    for (const auto& item : *array) {
        if (!item.is_string()) return {};
        texts.push_back(item.as_string()->get());
    }
    return texts;
}

/// `value` is no monostate.
void assign(toml::table& root, const std::string& key, const SettingValue& value) {
    const auto insert = [&](const auto& plain) {
        using Plain = std::decay_t<decltype(plain)>;
        if constexpr (std::is_same_v<Plain, std::vector<std::string>>) {
            toml::array array;
            for (const auto& text : plain) array.push_back(text);
            root.insert_or_assign(key, std::move(array));
        } else if constexpr (!std::is_same_v<Plain, std::monostate>) {
            root.insert_or_assign(key, plain);
        }
    };
    std::visit(insert, value);
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result.append({'\\', c});
        else if (c == '\n')
            result += "\\n";
        else if (c == '\t')
            result += "\\t";
        else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            result += fmt::format("\\u{:04X}", static_cast<unsigned>(c));
        else
            result += c;
    }
    return result + '"';
}

std::string keyText(std::string_view key) {
    const bool bare = !key.empty() && std::all_of(key.begin(), key.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
               c == '-';
    });
    return bare ? std::string(key) : quoted(key);
}

/// On one line, a number in its shortest exact form.
struct ValueText {
    std::string operator()(std::monostate) { return {}; }
    std::string operator()(bool value) { return value ? "true" : "false"; }
    std::string operator()(int64_t value) { return std::to_string(value); }
    std::string operator()(double value) {
        if (std::isnan(value)) return "nan";
        std::string text = fmt::format("{}", value);
        return text.find_first_of(".einf") == std::string::npos ? text + ".0" : text;
    }
    std::string operator()(const std::string& value) { return quoted(value); }
    std::string operator()(const std::vector<std::string>& values) {
        std::string text = "[";
        for (const auto& value : values) text += (text.size() > 1 ? ", " : "") + quoted(value);
        return text + "]";
    }
};

size_t lineStart(std::string_view text, size_t line) {
    size_t at = 0;
    for (size_t current = 1; current < line; ++current) {
        at = text.find('\n', at);
        if (at == std::string_view::npos) return text.size();
        ++at;
    }
    return at;
}

size_t lineEnd(std::string_view text, size_t at) {
    const size_t feed = text.find('\n', at);
    return feed == std::string_view::npos ? text.size() : feed + 1;
}

/// Positions of toml++ count lines and code points from 1.
size_t offsetOf(std::string_view text, toml::source_position position) {
    size_t at = lineStart(text, position.line);
    for (size_t column = 1; column < position.column && at < text.size(); ++column) do
            ++at;
        while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80);
    return at;
}

std::string spliced(std::string_view text, size_t begin, size_t end, std::string_view middle) {
    begin = std::min(begin, text.size());
    end = std::clamp(end, begin, text.size());
    return fmt::format("{}{}{}", text.substr(0, begin), middle, text.substr(end));
}

/// Where a new line belongs: behind the last plain key of the top level, as what follows a table's header
/// would belong to that table.
size_t insertionPoint(std::string_view text, const toml::table& root) {
    if (root.empty()) return text.size();
    size_t lastLine = 0;
    for (const auto& [key, node] : root)
        if (!node.is_table() && !node.is_array_of_tables())
            lastLine = std::max<size_t>(lastLine, node.source().end.line);
    return lastLine == 0 ? 0 : lineEnd(text, lineStart(text, lastLine));
}

/// The change made in the lines it concerns. A guess, to be verified: a key may share its line with others,
/// be a table, or be written in parts.
std::string editedLines(std::string_view text, const toml::table& root, const SettingChange& change) {
    const std::string value = change.value ? std::visit(ValueText(), *change.value) : "";
    const auto found = root.find(change.key);
    if (found == root.end()) {
        const size_t at = insertionPoint(text, root);
        const std::string_view feed = at > 0 && text[at - 1] != '\n' ? "\n" : "";
        return spliced(text, at, at, fmt::format("{}{} = {}\n", feed, keyText(change.key), value));
    }
    const auto& source = found->second.source();
    if (change.value) return spliced(text, offsetOf(text, source.begin), offsetOf(text, source.end), value);
    const size_t begin = lineStart(text, found->first.source().begin.line);
    return spliced(text, begin, lineEnd(text, lineStart(text, source.end.line)), "");
}

bool isTextOf(std::string_view text, const toml::table& expected) {
    const auto parsed = toml::parse(text);
    return parsed && parsed.table() == expected;
}

std::optional<std::string> edited(std::string_view text, const SettingChange& change) {
    const auto parsed = toml::parse(text);
    if (!parsed || (change.value && std::holds_alternative<std::monostate>(*change.value))) return {};
    toml::table expected = parsed.table();
    if (change.value)
        assign(expected, change.key, *change.value);
    else
        expected.erase(change.key);
    if (expected == parsed.table()) return std::string(text);

    std::string lines = editedLines(text, parsed.table(), change);
    if (isTextOf(lines, expected)) return lines;
    std::ostringstream rewritten;
    rewritten << toml::toml_formatter{expected} << '\n';
    if (isTextOf(rewritten.str(), expected)) return rewritten.str();
    return {};
}

} // namespace

ParsedSettings parseSettings(std::string_view text) {
    const auto parsed = toml::parse(text);
    ParsedSettings result;
    if (!parsed) {
        const auto& error = parsed.error();
        result.error = fmt::format("line {}: {}", error.source().begin.line, error.description());
        return result;
    }
    for (const auto& [key, node] : parsed.table())
        result.values.emplace(std::string(key.str()), toSettingValue(node));
    return result;
}

std::optional<std::string> editedSettings(std::string_view text, const SettingChanges& changes) {
    std::optional<std::string> result(text);
    for (const auto& change : changes) {
        result = edited(*result, change);
        if (!result) break;
    }
    return result;
}

} // namespace quarn
