#include "cli/SettingsCommand.h"

#include "ui/settings/Prefs.h"

#include <charconv>
#include <cmath>
#include <ostream>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace quarn {

namespace {

using Arguments = std::span<const std::string>;
using Texts = std::vector<std::string>;

constexpr std::string_view usage = "list [--json] | get KEY | set KEY VALUE | reset KEY | reset --all";

/// Wrong usage; the message follows "quarn settings: ".
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Stored texts are shown without control characters: they must not steer the terminal.
std::string printable(std::string_view text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool c1 = c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (c1) ++i;
        if (!c1 && c >= 0x20 && c != 0x7f) result += text[i];
    }
    return result;
}

/// As `set` takes it.
struct ValueText {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return fmt::format("{}", value); }
    std::string operator()(const std::string& value) const { return printable(value); }
    std::string operator()(const Texts& values) const {
        return printable(fmt::format("{}", fmt::join(values, ",")));
    }
};

std::string valueText(const SettingValue& value) { return std::visit(ValueText(), value); }

/// Reads the text of a value of the same type as the default it is called with; nullopt when it is none.
class ValueParser {
public:
    ValueParser(std::string_view text, const Accepted& accepted) : text_(text), accepted_(accepted) {}

    using Parsed = std::optional<SettingValue>;
    Parsed operator()(std::monostate) const { return {}; }
    Parsed operator()(bool) const {
        for (const auto yes : {"true", "yes", "on"})
            if (text_ == yes) return true;
        for (const auto no : {"false", "no", "off"})
            if (text_ == no) return false;
        return {};
    }
    Parsed operator()(int64_t) const { return number<int64_t>(); }
    Parsed operator()(double) const { return number<double>(); }
    Parsed operator()(const std::string&) const {
        return isChoice(text_) ? Parsed(std::string(text_)) : Parsed();
    }
    Parsed operator()(const Texts&) const {
        Texts texts;
        for (std::string_view rest = text_; !rest.empty();) {
            const size_t comma = rest.find(',');
            texts.emplace_back(rest.substr(0, comma));
            if (!isChoice(texts.back())) return {};
            rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
        }
        return texts;
    }

private:
    template <class Number>
    Parsed number() const {
        Number value{};
        const auto [end, error] = std::from_chars(text_.data(), text_.data() + text_.size(), value);
        if (error != std::errc() || end != text_.data() + text_.size()) return {};
        const auto size = static_cast<double>(value);
        if (!std::isfinite(size) || size < accepted_.least || size > accepted_.most) return {};
        return value;
    }
    bool isChoice(std::string_view text) const {
        const auto& choices = accepted_.choices;
        return choices.empty() || std::find(choices.begin(), choices.end(), text) != choices.end();
    }

    std::string_view text_;
    const Accepted& accepted_;
};

/// Names a type by its default and says what is accepted: "a whole number from 1 to 200".
struct TypeRow {
    std::string_view name;
    std::string_view takes;
};
constexpr TypeRow types[]{{},
                          {"bool", "true or false"},
                          {"int", "a whole number"},
                          {"double", "a number"},
                          {"string", "a text"},
                          {"list", "a comma-separated list"}};

const TypeRow& typeOf(const AnySetting& setting) { return types[setting.storedDefault().index()]; }

std::string acceptedText(const AnySetting& setting) {
    const Accepted& accepted = setting.accepted();
    if (!accepted.choices.empty()) {
        const bool list = std::holds_alternative<Texts>(setting.storedDefault());
        return fmt::format("{} {}", list ? "a comma-separated list of" : "one of",
                           fmt::join(accepted.choices, ", "));
    }
    if (!accepted.form.empty()) return std::string(accepted.form);
    std::string text(typeOf(setting).takes);
    if (std::isfinite(accepted.least)) text += fmt::format(" from {}", accepted.least);
    if (std::isfinite(accepted.most)) text += fmt::format(" to {}", accepted.most);
    return text;
}

nlohmann::ordered_json toJson(const SettingValue& value) {
    return std::visit(
        [](const auto& plain) -> nlohmann::ordered_json {
            if constexpr (std::is_same_v<std::decay_t<decltype(plain)>, std::monostate>)
                return nullptr;
            else
                return plain;
        },
        value);
}

void listAsJson(const Prefs& prefs, std::ostream& out) {
    auto rows = nlohmann::ordered_json::array();
    for (const auto* setting : prefs.settings()) {
        const auto value = setting->storedValue();
        rows.push_back({{"key", setting->key()},
                        {"type", typeOf(*setting).name},
                        {"value", toJson(value)},
                        {"default", toJson(setting->storedDefault())},
                        {"isDefault", value == setting->storedDefault()},
                        {"accepts", acceptedText(*setting)},
                        {"meaning", setting->meaning()}});
    }
    out << rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void list(Arguments arguments, Prefs& prefs, std::ostream& out) {
    if (arguments.size() > 1 || (arguments.size() == 1 && arguments[0] != "--json"))
        throw UsageError("list takes nothing but --json");
    if (!arguments.empty()) return listAsJson(prefs, out);

    size_t width = 0;
    for (const auto* setting : prefs.settings()) width = std::max(width, setting->key().size());
    const auto shown = [](const SettingValue& value) {
        const std::string text = valueText(value);
        return text.empty() ? std::string("\"\"") : text;
    };
    for (const auto* setting : prefs.settings()) {
        const auto value = setting->storedValue();
        const auto standard = setting->storedDefault();
        out << fmt::format("{} {:{}}  {}", value == standard ? ' ' : '*', setting->key(), width,
                           shown(value));
        if (value != standard) out << fmt::format("  (default {})", shown(standard));
        out << '\n';
    }
}

AnySetting& settingNamed(const std::string& key, const Prefs& prefs) {
    if (auto* setting = prefs.find(key)) return *setting;
    throw UsageError(
        fmt::format("there is no setting \"{}\"; quarn settings list shows all", printable(key)));
}

void get(Arguments arguments, Prefs& prefs, std::ostream& out) {
    if (arguments.size() != 1) throw UsageError("get takes one key");
    out << valueText(settingNamed(arguments[0], prefs).storedValue()) << '\n';
}

void set(Arguments arguments, Prefs& prefs, std::ostream&) {
    if (arguments.size() != 2) throw UsageError("set takes a key and a value");
    AnySetting& setting = settingNamed(arguments[0], prefs);
    auto value = std::visit(ValueParser(arguments[1], setting.accepted()), setting.storedDefault());
    if (!value || !setting.understands(*value))
        throw UsageError(fmt::format("{} takes {}, not \"{}\"", setting.key(), acceptedText(setting),
                                     printable(arguments[1])));
    setting.store(std::move(*value));
}

void resetAll(Prefs& prefs) {
    const auto changes = [&](const SettingsValues& values) {
        SettingChanges removals;
        for (const auto* setting : prefs.settings())
            if (values.contains(setting->key()))
                removals.push_back({std::string(setting->key()), std::nullopt});
        return removals;
    };
    if (!changes(*prefs.d.values()).empty()) prefs.d.update(changes);
}

void reset(Arguments arguments, Prefs& prefs, std::ostream&) {
    if (arguments.size() != 1) throw UsageError("reset takes one key or --all");
    if (arguments[0] == "--all") return resetAll(prefs);
    settingNamed(arguments[0], prefs).reset();
}

struct Action {
    std::string_view name;
    void (*run)(Arguments, Prefs&, std::ostream&);
};
constexpr Action actions[]{{"list", list}, {"get", get}, {"set", set}, {"reset", reset}};

void run(Arguments arguments, Prefs& prefs, std::ostream& out) {
    for (const auto& action : actions)
        if (!arguments.empty() && action.name == arguments[0])
            return action.run(arguments.subspan(1), prefs, out);
    throw UsageError(fmt::format("usage: quarn settings {}", usage));
}

} // namespace

int runSettings(std::span<const std::string> arguments, Prefs& prefs, std::ostream& out, std::ostream& err) {
    try {
        run(arguments, prefs, out);
        return 0;
    } catch (const UsageError& error) {
        err << "quarn settings: " << error.what() << '\n';
        return 2;
    } catch (const SettingsError& error) {
        err << "quarn settings: " << error.what() << '\n';
        return 1;
    }
}

} // namespace quarn
