#include "monitor/SMCKeyNames.h"

#include <algorithm>
#include <array>
#include <optional>

namespace quarn {

namespace {

struct Name {
    std::string_view pattern; ///< '#' stands for a digit
    std::string_view text;    ///< '#' stands for that digit, '+' for one more
};

/// The last '#' of a pattern stands for one digit, which is returned; nullopt when `text` does not fit. A
/// pattern without one gives '\0'.
std::optional<char> match(std::string_view pattern, std::string_view text) {
    if (pattern.size() != text.size()) return {};
    char digit = '\0';
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '#' && text[i] >= '0' && text[i] <= '9') {
            digit = text[i];
        } else if (pattern[i] != text[i]) {
            return {};
        }
    }
    return digit;
}

std::string filled(std::string_view text, char digit) {
    std::string result;
    for (const char c : text) {
        if (c == '#') {
            result += digit;
        } else if (c == '+') {
            result += std::to_string(digit - '0' + 1);
        } else {
            result += c;
        }
    }
    return result;
}

// Keys that mean the same on every controller that has them.
constexpr Name wellKnownKeys[] = {
    {"TA#P", "Ambient air +"},
    {"TB#T", "Battery +"},
    {"TC#C", "CPU core +"},
    {"TC#D", "CPU die +"},
    {"TC#H", "CPU heat sink +"},
    {"TC#P", "CPU proximity +"},
    {"TCGC", "CPU graphics"},
    {"TCSA", "CPU system agent"},
    {"TCXC", "CPU (PECI)"},
    {"TG#D", "GPU die +"},
    {"TG#H", "GPU heat sink +"},
    {"TG#P", "GPU proximity +"},
    {"TH#A", "Disk +, sensor A"},
    {"TH#B", "Disk +, sensor B"},
    {"TH#P", "Drive bay +"},
    {"TH#x", "Disk +"},
    {"TI#P", "Thunderbolt port +"},
    {"TL#P", "Display +"},
    {"TM#P", "Memory proximity +"},
    {"TM#S", "Memory slot +"},
    {"TN#D", "Northbridge die +"},
    {"TN#P", "Northbridge proximity +"},
    {"TO#P", "Optical drive +"},
    {"TP#P", "Chipset proximity +"},
    {"TPCD", "Chipset die"},
    {"TW#P", "Wireless card +"},
    {"TaLP", "Airflow, left"},
    {"TaRF", "Airflow, right"},
    {"Tg05", "GPU 1"},
    {"Tg0D", "GPU 2"},
    {"Tg0L", "GPU 3"},
    {"Tg0T", "GPU 4"},
    {"Th#H", "Heat pipe +"},
    {"Tm#P", "Mainboard proximity +"},
    {"Tp#C", "Power supply +"},
    {"Ts#P", "Palm rest +"},
    {"F#Ac", "Fan +"},
    {"IB0R", "Battery current"},
    {"IC#C", "CPU core current +"},
    {"IC#R", "CPU supply current +"},
    {"ID0R", "Current from the adapter"},
    {"IG#C", "GPU core current +"},
    {"PBLC", "Display backlight"},
    {"PCPC", "CPU cores"},
    {"PCPD", "Memory"},
    {"PCPG", "CPU graphics"},
    {"PCPR", "CPU package"},
    {"PCPT", "CPU package, total"},
    {"PCTR", "CPU, total"},
    {"PDTR", "From the adapter"},
    {"PG#R", "GPU +"},
    {"PGTR", "GPU, total"},
    {"PPBR", "Battery"},
    {"PSTR", "Whole machine"},
    {"VBAT", "Battery voltage"},
    {"VC#C", "CPU core voltage +"},
    {"VD0R", "Voltage from the adapter"},
    {"VG#C", "GPU core voltage +"},
    {"VM#R", "Memory voltage +"},
    {"VN#R", "Northbridge voltage +"},
    {"VP0R", "12 V rail"},
};

// What drivers call their sensors, in plain words. A trailing '*' keeps the rest of the label.
constexpr std::array<std::pair<std::string_view, std::string_view>, 17> labelWords{{
    {"Package id 0", "CPU package"},
    {"Physical id 0", "CPU package"},
    {"Package id *", "CPU package "},
    {"Physical id *", "CPU package "},
    {"Core *", "CPU core "},
    {"Tctl", "CPU control value"},
    {"Tdie", "CPU die"},
    {"Tccd*", "CPU chiplet "},
    {"edge", "GPU edge"},
    {"junction", "GPU hot spot"},
    {"mem", "GPU memory"},
    {"vddgfx", "GPU core"},
    {"vddnb", "Northbridge"},
    {"PPT", "GPU package"},
    {"slowPPT", "GPU package, slow average"},
    {"fastPPT", "GPU package, fast average"},
    {"SYSTIN", "Mainboard"},
}};

std::string inPlainWords(std::string_view label) {
    for (const auto& [driver, words] : labelWords) {
        if (!driver.ends_with('*')) {
            if (label == driver) return std::string(words);
            continue;
        }
        const std::string_view start = driver.substr(0, driver.size() - 1);
        if (label.starts_with(start)) return std::string(words) + std::string(label.substr(start.size()));
    }
    return std::string(label);
}

std::string_view kindName(char letter) {
    switch (letter) {
    case 'T': return "Temperature";
    case 'F': return "Fan";
    case 'V': return "Voltage";
    case 'I': return "Current";
    case 'P': return "Power";
    default: return "Sensor";
    }
}

} // namespace

std::string SMCKeyNames::wellKnown(std::string_view key) {
    for (const Name& name : wellKnownKeys) {
        if (const auto digit = match(name.pattern, key)) return filled(name.text, *digit);
    }
    return {};
}

std::string SMCKeyNames::describe(const sysinfo::SensorDescription& sensor) {
    const auto text = sysinfo::smcText(sensor.key);
    const std::string_view key(text.data(), 4);
    if (key == "PSTR" || key == "PDTR") {
        return wellKnown(key) + " (" + (sensor.label.empty() ? sensor.chip : sensor.label) + ")";
    }
    // The controller's own keys carry no label: the table knows more of them than their number does.
    if (sensor.label.empty() && sensor.chip == "SMC") {
        const std::string known = wellKnown(key);
        return known.empty() ? std::string(key) : known;
    }
    const std::string what = sensor.label.empty()
                                 ? std::string(kindName(key.front())) + ' ' + std::to_string(sensor.number)
                                 : inPlainWords(sensor.label);
    return what + " (" + sensor.chip + ")";
}

std::string SMCKeyNames::describe(std::string_view key, const sysinfo::SMC& smc) {
    const uint32_t code = sysinfo::smcCode(key);
    if (const auto sensor = code != 0 ? smc.describe(code) : std::nullopt) return describe(*sensor);
    const std::string known = wellKnown(key);
    return known.empty() ? std::string(key) : known;
}

} // namespace quarn
